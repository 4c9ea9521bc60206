#include "ui/dialogs/message_text.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>

#include "ui/controls/wrapped_label.h"

namespace dorvane {

MessageText::MessageText(QWidget* parent) : QPlainTextEdit(parent) {
  setFrameShape(QFrame::NoFrame);
  setReadOnly(true);
  setTextInteractionFlags(Qt::TextSelectableByMouse);
  setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setTabChangesFocus(true);
  document()->setDocumentMargin(0);
  viewport()->setAutoFillBackground(false);
  viewport()->setCursor(Qt::IBeamCursor);
}

void MessageText::setText(const QString& text) {
  text_ = text;
  setPlainText(QString(text).remove('\r'));
}

int MessageText::HeightForWidth(int width) const {
  return WrappedTextHeight(text_, font(), width);
}

void MessageText::CopySelectionOrAll() {
  textCursor().hasSelection() ? copy() : QApplication::clipboard()->setText(toPlainText());
}

void MessageText::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) return CopySelectionOrAll();
  QPlainTextEdit::keyPressEvent(event);
}

}  // namespace dorvane
