#include "ui/dialogs/frm_msg_box.h"

#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <QWindow>
#include <algorithm>

#include "ui/controls/make_child.h"
#include "ui/controls/picture_box.h"
#include "ui/controls/soft_button.h"
#include "ui/dialogs/built_in_skin.h"
#include "ui/dialogs/message_box.h"
#include "ui/dialogs/skin_module.h"
#include "ui/look/current_look.h"

namespace dorvane {

namespace {

const QString kApplicationTitle = QStringLiteral("Dorvane");

constexpr int kBoxWidth = 380;
constexpr int kTitleHeight = 30;
constexpr int kBorderWidth = 19;
constexpr int kIconSize = 32;
constexpr QPoint kIconPosition(23, 40);
constexpr int kMessageLeft = 74;
constexpr int kMessageTop = 44;
constexpr int kMessageRightMargin = 22;
constexpr int kMinMessageHeight = 44;
constexpr int kMaxMessageHeight = 260;
constexpr int kOfferGap = 8;
constexpr int kButtonWidth = 92;
constexpr int kButtonHeight = 28;
constexpr int kButtonBottom = 18;  // from the window's lower edge
constexpr int kOkAlone = 139;
constexpr int kYesLeft = 70;
constexpr int kNoLeft = 224;

struct IconChoice {
  std::int32_t style;
  MessageIcon in_ok_box;
  MessageIcon in_yes_no_box;
};
constexpr IconChoice kIcons[] = {
    {message_style::kError, MessageIcon::Error, MessageIcon::Error},
    {message_style::kQuestion, MessageIcon::Warning, MessageIcon::Question},
    {message_style::kInformation, MessageIcon::Information, MessageIcon::Information},
};

// The pictures as designed; the order is the order in which they lie above each other.
struct DesignedPicture {
  const char* name;
  QSize size;
};
constexpr QSize kEdge(kBorderWidth, kTitleHeight);
constexpr QSize kTitleButton(14, 14);
constexpr DesignedPicture kPictures[] = {
    {"imgWindowLeft", kEdge},
    {"imgWindowRight", kEdge},
    {"imgWindowBottom", kEdge},
    {"imgWindowBottomLeft", kEdge},
    {"imgWindowBottomRight", kEdge},
    {"imgTitleMain", kEdge},
    {"imgTitleLeft", kEdge},
    {"imgTitleRight", kEdge},
    {"imgTitleMinimize", kTitleButton},
    {"imgTitleMaximize", kTitleButton},
    {"imgTitleRestore", kTitleButton},
    {"imgTitleMaxRestore", kTitleButton},
    {"imgTitleHelp", kTitleButton},
    {"imgTitleClose", kTitleButton},
};
// Part of every skin, of no use in a box that can't change its size.
constexpr const char* kDisabledPictures[] = {"imgTitleMinimize", "imgTitleMaxRestore",
                                             "imgTitleHelp"};
constexpr const char* kHiddenPictures[] = {"imgTitleMaximize", "imgTitleRestore"};
constexpr const char* kDragHandles[] = {"imgTitleLeft", "imgTitleMain", "imgTitleRight"};

// A click on the title text belongs to the picture below it.
void PassMouseThrough(QWidget& widget) {
  widget.setAttribute(Qt::WA_TransparentForMouseEvents);
}

}  // namespace

MessageIcon IconOf(MessageBoxKind kind, std::int32_t style) {
  const auto found = std::ranges::find(kIcons, style, &IconChoice::style);
  if (found == std::end(kIcons)) return MessageIcon::Warning;
  return kind == MessageBoxKind::Ok ? found->in_ok_box : found->in_yes_no_box;
}

frmMsgBox::frmMsgBox() : QDialog(nullptr, Qt::Dialog | Qt::FramelessWindowHint) {
  setObjectName("frmMsgBox");
  setModal(true);
  resize(kBoxWidth, 160);
  AddFramePictures();
  AddTitle();
  AddMessage();
  AddButtons();
  LayoutSkinFrame(*this);
  SetTopMost(*this, false);
  FollowLook(*this, [this](const Look& look) { Dress(look); });
}

void frmMsgBox::Dress(const Look& look) {
  setPalette(look.message);
  QPalette title;
  title.setColor(QPalette::WindowText, look.message_title);
  lblTitle_->setPalette(title);
  for (const DesignedPicture& designed : kPictures) {
    findChild<PictureBox*>(designed.name)->SetPicture(BuiltInPicture(designed.name, designed.size));
  }
  LoadSkin(*this);
}

void frmMsgBox::AddFramePictures() {
  for (const DesignedPicture& designed : kPictures) {
    PictureBox& box = MakeNamed<PictureBox>(designed.name, *this);
    box.resize(designed.size);
  }
  for (const char* name : kDisabledPictures) findChild<PictureBox*>(name)->setEnabled(false);
  for (const char* name : kHiddenPictures) findChild<PictureBox*>(name)->hide();
  for (const char* name : kDragHandles) {
    connect(findChild<PictureBox*>(name), &PictureBox::Pressed, this,
            [this] { DragWindow(*this); });
  }
  auto* close_picture = findChild<PictureBox*>("imgTitleClose");
  close_picture->setAccessibleName(tr("Close"));
  connect(close_picture, &PictureBox::Clicked, this, [this] {
    unloaded_ = true;
    End(kAnswerNo);
  });
}

void frmMsgBox::AddTitle() {
  lblTitle_ = &MakeNamed<QLabel>("lblTitle", *this, kApplicationTitle);
  QFont title_font = font();
  title_font.setBold(true);
  lblTitle_->setFont(title_font);
  lblTitle_->setTextFormat(Qt::PlainText);
  lblTitle_->setGeometry(14, 0, kBoxWidth - 14 - 78, kTitleHeight);
  PassMouseThrough(*lblTitle_);
}

void frmMsgBox::AddMessage() {
  lblMessage_ = &MakeNamed<MessageText>("lblMessage", static_cast<QWidget&>(*this));
  chkOffer_ = &MakeNamed<QCheckBox>("chkOffer", *this);
  chkOffer_->hide();
}

void frmMsgBox::SetOffer(const QString& caption) {
  chkOffer_->setText(caption);
  chkOffer_->setChecked(false);
  chkOffer_->setVisible(!caption.isEmpty());
}

bool frmMsgBox::IsOfferTaken() const {
  return chkOffer_->isChecked();
}

void frmMsgBox::AddButtons() {
  cmdOK_ = &AddDialogButton("cmdOK", *this, "OK", 'O');
  cmdNo_ = &AddDialogButton("cmdNo", *this, "No", 'N');
  for (GradientButton* button : {cmdOK_, cmdNo_}) button->resize(kButtonWidth, kButtonHeight);
  connect(cmdOK_, &QAbstractButton::clicked, this, [this] { End(kAnswerYes); });
  connect(cmdNo_, &QAbstractButton::clicked, this, [this] { End(kAnswerNo); });
  setTabOrder(cmdOK_, cmdNo_);
  setTabOrder(cmdNo_, chkOffer_);
  setTabOrder(chkOffer_, lblMessage_);
}

void frmMsgBox::End(int answer) {
  answer_ = answer;
  done(answer);
}

int frmMsgBox::Run(MessageBoxKind kind, const QString& text, std::int32_t style,
                   const QString& title, int default_answer) {
  const bool asks = kind == MessageBoxKind::YesNo;
  icon_ = IconOf(kind, style);
  cmdNo_->setVisible(asks);
  cmdOK_->SetCaption(asks ? "Yes" : "OK");
  cmdOK_->SetAccessKey(asks ? 'Y' : 'O');
  lblMessage_->setText(text);
  setAccessibleDescription(text);
  const QString shown_title = title.trimmed().isEmpty() ? kApplicationTitle : title;
  lblTitle_->setText(shown_title);

  FitToMessage();
  const int button_top = height() - kButtonBottom - kButtonHeight;
  cmdOK_->move(asks ? kYesLeft : kOkAlone, button_top);
  cmdNo_->move(kNoLeft, button_top);
  LayoutSkinFrame(*this);
  if (kind == MessageBoxKind::Ok) LoadSkin(*this);

  MoveOverOwner();

  (default_answer == kAnswerYes ? cmdOK_ : cmdNo_)->setFocus();
  answer_ = kAnswerNo;
  exec();
  return answer_;
}

void frmMsgBox::FitToMessage() {
  const int width = kBoxWidth - kMessageLeft - kMessageRightMargin;
  const int wanted = lblMessage_->HeightForWidth(width);
  // Whole lines only, so that none is cut in half at the lower edge.
  const int line = lblMessage_->fontMetrics().height();
  const int most = kMaxMessageHeight / line * line;
  const int shown = std::clamp(wanted, kMinMessageHeight, std::max(most, kMinMessageHeight));
  lblMessage_->setFocusPolicy(wanted > shown ? Qt::StrongFocus : Qt::ClickFocus);
  lblMessage_->setVerticalScrollBarPolicy(wanted > shown ? Qt::ScrollBarAlwaysOn
                                                         : Qt::ScrollBarAlwaysOff);
  lblMessage_->setGeometry(kMessageLeft, kMessageTop, width, shown);
  lblMessage_->verticalScrollBar()->setValue(0);
  int offered = 0;
  if (!chkOffer_->isHidden()) {
    chkOffer_->setGeometry(QRect(QPoint(kMessageLeft, kMessageTop + shown + kOfferGap),
                                 QSize(width, chkOffer_->sizeHint().height())));
    offered = kOfferGap + chkOffer_->height();
  }
  const int height = kMessageTop + shown + offered + 18 + kButtonHeight + kButtonBottom;
  setFixedSize(kBoxWidth, height);
}

void frmMsgBox::MoveOverOwner() {
  winId();  // makes windowHandle()
  // A window manager hides what belongs to a minimized window.
  const bool stands_over = owner_ && owner_->isVisible() && !owner_->isMinimized();
  windowHandle()->setTransientParent(stands_over ? owner_->windowHandle() : nullptr);
  if (!stands_over) return;
  const QRect screen = owner_->screen()->availableGeometry();
  const QPoint place = owner_->frameGeometry().center() - rect().center();
  move(std::clamp(place.x(), screen.left(), std::max(screen.left(), screen.right() - width())),
       std::clamp(place.y(), screen.top(), std::max(screen.top(), screen.bottom() - height())));
}

void frmMsgBox::paintEvent(QPaintEvent* event) {
  QDialog::paintEvent(event);
  QPainter painter(this);
  PaintMessageIcon(painter, icon_, QRectF(kIconPosition, QSize(kIconSize, kIconSize)));
}

void frmMsgBox::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) return lblMessage_->CopySelectionOrAll();
  const bool asks = !cmdNo_->isHidden();
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return (cmdNo_->hasFocus() ? cmdNo_ : cmdOK_)->click();
    case Qt::Key_Y:
      if (asks) cmdOK_->click();
      return;
    case Qt::Key_N:
      if (asks) cmdNo_->click();
      return;
    default:
      return QDialog::keyPressEvent(event);
  }
}

}  // namespace dorvane
