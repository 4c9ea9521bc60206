#pragma once

#include <QDialog>
#include <cstdint>

#include "ui/controls/gradient_button.h"
#include "ui/controls/wrapped_label.h"
#include "ui/dialogs/message_icon.h"

class QScrollArea;

namespace dorvane {

enum class MessageBoxKind { kOk, kYesNo };

/// The icon of a message of that style.
MessageIcon IconOf(MessageBoxKind kind, std::int32_t style);

/// The program's message box, a window with a skinned frame. Its controls carry their names as
/// object names. A long message wraps; one that is longer still scrolls inside the box.
class frmMsgBox : public QDialog {
  Q_OBJECT

 public:
  frmMsgBox();

  /// Shows the box and returns when the user has ended it: kAnswerYes or kAnswerNo.
  int Run(MessageBoxKind kind, const QString& text, std::int32_t style, const QString& title);

  /// True once the close picture has ended the box, which is then not to be used again.
  bool IsUnloaded() const { return unloaded_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void AddFramePictures();
  void AddTitle();
  void AddMessage();
  void AddButtons();
  void End(int answer);
  void FitToMessage();

  QLabel* lblTitle_;
  QScrollArea* message_area_;
  WrappedLabel* lblMessage_;
  GradientButton* cmdOK_;
  GradientButton* cmdNo_;
  MessageIcon icon_ = MessageIcon::kWarning;
  int answer_ = 0;
  bool unloaded_ = false;
};

}  // namespace dorvane
