#pragma once

#include <QTextBrowser>
#include <string>

#include "platform/help/help_book.h"

namespace dorvane {

/// Shows the topics of a help book and follows their links inside it. Links that lead out of the
/// book do nothing. Topics have the colours of the book's style sheet, which is written for a light
/// ground; on a dark one each of them keeps its hue and becomes as light as it was dark.
class HelpBrowser : public QTextBrowser {
  Q_OBJECT

 public:
  explicit HelpBrowser(QWidget* parent = nullptr);

  /// The book is not owned and must outlive the browser's use of it; null for none.
  void SetBook(const help::HelpBook* book) { book_ = book; }

  /// A path inside the book, maybe with "#anchor".
  void ShowTopic(const std::string& topic);
  void ShowText(const QString& text);

 protected:
  void changeEvent(QEvent* event) override;
  QVariant loadResource(int type, const QUrl& name) override;
  void doSetSource(const QUrl& name, QTextDocument::ResourceType type) override;

 private:
  const help::HelpBook* book_ = nullptr;
};

}  // namespace dorvane
