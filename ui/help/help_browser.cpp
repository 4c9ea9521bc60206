#include "ui/help/help_browser.h"

namespace dorvane {

namespace {

constexpr const char* kScheme = "chm";
/// The topics lie side by side at the top of the help file.
const QUrl kTop("chm:/");

}  // namespace

HelpBrowser::HelpBrowser(QWidget* parent) : QTextBrowser(parent) {
  setOpenExternalLinks(false);
}

void HelpBrowser::ShowTopic(const std::string& topic) {
  setSource(kTop.resolved(QUrl(QString::fromStdString(topic))), QTextDocument::HtmlResource);
}

void HelpBrowser::ShowText(const QString& text) {
  setPlainText(text);
}

QVariant HelpBrowser::loadResource(int /*type*/, const QUrl& name) {
  // While a topic loads, source() is still the one before: its style sheet comes by a bare name.
  const QUrl url = kTop.resolved(name);
  if (book_ == nullptr || url.scheme() != kScheme) return {};
  const auto bytes = book_->Read(url.path().toStdString());
  return bytes ? QVariant(QString::fromStdString(*bytes)) : QVariant();
}

void HelpBrowser::doSetSource(const QUrl& name, QTextDocument::ResourceType type) {
  if (name.scheme() == kScheme) QTextBrowser::doSetSource(name, type);
}

}  // namespace dorvane
