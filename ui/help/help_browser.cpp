#include "ui/help/help_browser.h"

#include <QEvent>
#include <QRegularExpression>
#include <QScrollBar>

namespace dorvane {

namespace {

constexpr const char* kScheme = "chm";
/// The topics lie side by side at the top of the help file.
const QUrl kTop("chm:/");
constexpr double kTopicMargin = 14;

/// The style sheet with its colours between those of text and ground, black becoming the one and
/// white the other.
QString TurnedOver(const QString& css, const QPalette& palette) {
  const float ground = palette.color(QPalette::Base).lightnessF();
  const float text = palette.color(QPalette::Text).lightnessF();
  static const QRegularExpression color("#[0-9a-fA-F]{6}\\b");
  QString turned = css;
  auto each = color.globalMatch(css);
  while (each.hasNext()) {
    const auto match = each.next();
    QColor changed = QColor(match.captured()).toHsl();
    const float lightness = text + (ground - text) * changed.lightnessF();
    changed.setHslF(changed.hslHueF(), changed.hslSaturationF(), lightness);
    turned.replace(match.capturedStart(), match.capturedLength(), changed.name());
  }
  return turned;
}

bool IsDark(const QPalette& palette) {
  return palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness();
}

}  // namespace

HelpBrowser::HelpBrowser(QWidget* parent) : QTextBrowser(parent) {
  setOpenExternalLinks(false);
}

void HelpBrowser::ShowTopic(const std::string& topic) {
  const QUrl url = kTop.resolved(QUrl(QString::fromStdString(topic)));
  // A text may stand there instead of the topic that was asked for last.
  if (url == source()) return reload();
  setSource(url, QTextDocument::HtmlResource);
}

void HelpBrowser::ShowText(const QString& text) {
  setPlainText(text);
}

QVariant HelpBrowser::loadResource(int /*type*/, const QUrl& name) {
  // While a topic loads, source() is still the one before: its style sheet comes by a bare name.
  const QUrl url = kTop.resolved(name);
  if (book_ == nullptr || url.scheme() != kScheme) return {};
  const auto bytes = book_->Read(url.path().toStdString());
  if (!bytes) return {};
  const QString text = QString::fromStdString(*bytes);
  const bool is_turned = url.path().endsWith(".css") && IsDark(palette());
  return is_turned ? TurnedOver(text, palette()) : text;
}

void HelpBrowser::doSetSource(const QUrl& name, QTextDocument::ResourceType type) {
  if (name.scheme() != kScheme) return;
  QTextBrowser::doSetSource(name, type);
  document()->setDocumentMargin(kTopicMargin);
}

void HelpBrowser::changeEvent(QEvent* event) {
  QTextBrowser::changeEvent(event);
  if (event->type() != QEvent::PaletteChange || source().isEmpty()) return;
  const int place = verticalScrollBar()->value();
  reload();
  document()->setDocumentMargin(kTopicMargin);
  verticalScrollBar()->setValue(place);
}

}  // namespace dorvane
