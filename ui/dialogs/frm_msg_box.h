#pragma once

#include <QDialog>
#include <QPointer>
#include <cstdint>

#include "ui/controls/gradient_button.h"
#include "ui/dialogs/message_icon.h"
#include "ui/dialogs/message_text.h"
#include "ui/look/look.h"

class QCheckBox;
class QLabel;

namespace dorvane {

enum class MessageBoxKind { Ok, YesNo };

/// The icon of a message of that style.
MessageIcon IconOf(MessageBoxKind kind, std::int32_t style);

/// The program's message box, a window with a skinned frame. Its controls carry their names as
/// object names. A long message wraps; one that is longer still scrolls inside the box.
class frmMsgBox : public QDialog {
  Q_OBJECT

 public:
  frmMsgBox();

  /// Shows the box and returns when the user has ended it: kAnswerYes or kAnswerNo. Enter gives
  /// `default_answer`.
  int Run(MessageBoxKind kind, const QString& text, std::int32_t style, const QString& title,
          int default_answer);

  /// The caption of a check box below the message, not ticked; empty for none.
  void SetOffer(const QString& caption);
  bool IsOfferTaken() const;

  /// The window that the next box stands over; null leaves the place to the desktop.
  void StandOver(QWidget* owner) { owner_ = owner; }

  /// True once the close picture has ended the box, which is then not to be used again.
  bool IsUnloaded() const { return unloaded_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void AddFramePictures();
  void Dress(const Look& look);
  void AddTitle();
  void AddMessage();
  void AddButtons();
  void End(int answer);
  void FitToMessage();
  void MoveOverOwner();

  QLabel* lblTitle_;
  MessageText* lblMessage_;
  QCheckBox* chkOffer_;
  GradientButton* cmdOK_;
  GradientButton* cmdNo_;
  QPointer<QWidget> owner_;
  MessageIcon icon_ = MessageIcon::Warning;
  int answer_ = 0;
  bool unloaded_ = false;
};

}  // namespace dorvane
