#include "ui/help/help_browser.h"

namespace dorvane {

namespace {

constexpr const char* kScheme = "chm";

}  // namespace

HelpBrowser::HelpBrowser(QWidget* parent) : QTextBrowser(parent) {
  setOpenExternalLinks(false);
}

void HelpBrowser::ShowTopic(const std::string& topic) {
  const QUrl relative(QString::fromStdString(topic));
  setSource(QUrl(QString("%1:/").arg(kScheme)).resolved(relative), QTextDocument::HtmlResource);
}

void HelpBrowser::ShowText(const QString& text) {
  setPlainText(text);
}

QVariant HelpBrowser::loadResource(int /*type*/, const QUrl& name) {
  const QUrl url = source().isEmpty() ? name : source().resolved(name);
  if (book_ == nullptr || url.scheme() != kScheme) return {};
  const auto bytes = book_->Read(url.path().toStdString());
  return bytes ? QVariant(QString::fromStdString(*bytes)) : QVariant();
}

void HelpBrowser::doSetSource(const QUrl& name, QTextDocument::ResourceType type) {
  if (name.scheme() == kScheme) QTextBrowser::doSetSource(name, type);
}

}  // namespace dorvane
