#pragma once

#include <QPlainTextEdit>

namespace dorvane {

/// The text of a message box: plain, wrapped between words and, where a word is too wide, inside
/// it. It can be selected and copied, and scrolls when it is given less than its height.
class MessageText : public QPlainTextEdit {
 public:
  explicit MessageText(QWidget* parent);

  /// As it was set, with its line ends.
  QString text() const { return text_; }
  void setText(const QString& text);
  /// In logical pixels.
  int HeightForWidth(int width) const;
  /// The selected part; the whole text where nothing is selected.
  void CopySelectionOrAll();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QString text_;
};

}  // namespace dorvane
