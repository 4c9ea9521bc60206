#include "ui/dialogs/frm_wait.h"

#include <QCloseEvent>
#include <QEventLoop>
#include <QFrame>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QVBoxLayout>
#include <chrono>

#include "ui/controls/make_child.h"
#include "ui/controls/user_input.h"
#include "ui/look/current_look.h"

namespace dorvane {

namespace {

constexpr std::chrono::milliseconds kDelay(250);
constexpr std::chrono::milliseconds kShortestShow(500);
constexpr const char* kText = "Please wait";

}  // namespace

frmWait::frmWait(QWidget& window) : QWidget(&window), window_(window) {
  setObjectName("frmWait");
  setWindowTitle("Connecting......");
  setAccessibleName(windowTitle());
  setFocusPolicy(Qt::ClickFocus);  // never by Tab
  auto& layout = MakeChild<QVBoxLayout>(static_cast<QWidget&>(*this));
  layout.addWidget(&BuildPanel(), 0, Qt::AlignCenter);
  delay_.setSingleShot(true);
  delay_.setInterval(kDelay);
  connect(&delay_, &QTimer::timeout, this, &frmWait::Appear);
  window.installEventFilter(this);
  SetText(kText);
  hide();
}

QWidget& frmWait::BuildPanel() {
  auto& panel = MakeChild<QFrame>(static_cast<QWidget&>(*this));
  FollowPalette(panel, &Look::panel);
  panel.setAutoFillBackground(true);
  auto& layout = MakeChild<QVBoxLayout>(panel);
  layout.setContentsMargins(32, 20, 32, 24);
  layout.setSpacing(14);
  auto& title = MakeChild<QLabel>(panel, windowTitle());
  QFont bold = title.font();
  bold.setBold(true);
  title.setFont(bold);
  lblWait_ = &MakeNamed<QLabel>("lblWait", panel);
  for (QLabel* label : {&title, lblWait_}) {
    label->setAlignment(Qt::AlignCenter);
    layout.addWidget(label);
  }
  auto& moving = MakeNamed<QProgressBar>("pbWait", panel);
  moving.setAccessibleName(windowTitle());
  moving.setRange(0, 0);
  moving.setTextVisible(false);
  moving.setFixedHeight(10);
  moving.setMinimumWidth(220);
  layout.addWidget(&moving);
  return panel;
}

void frmWait::SetText(const QString& text) {
  lblWait_->setText(text);
  setAccessibleDescription(text);
}

void frmWait::Begin() {
  waiting_ = true;
  SetText(kText);
  delay_.start();
}

void frmWait::End() {
  waiting_ = false;
  delay_.stop();
  if (!isHidden()) {
    QEventLoop loop;
    const auto left = kShortestShow - std::chrono::milliseconds(shown_.elapsed());
    if (left.count() > 0) {
      QTimer::singleShot(left, &loop, &QEventLoop::quit);
      loop.exec();
    }
  }
  Vanish();
}

void frmWait::Appear() {
  focus_before_ = window_.focusWidget();
  setGeometry(window_.rect());
  raise();
  show();
  setFocus();
  shown_.start();
  ResumeUserInput();
}

void frmWait::Vanish() {
  if (isHidden()) return;
  // Before it is hidden: the focus would go to the next control in the tab order else.
  if (hasFocus() || window_.focusWidget() == this) {
    focus_before_ ? focus_before_->setFocus() : clearFocus();
  }
  hide();
}

bool frmWait::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
      event->accept();
      return true;
    default:
      return QWidget::event(event);
  }
}

bool frmWait::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Resize) setGeometry(window_.rect());
  // A question or an error of the server's stands over the window instead.
  if (waiting_ && event->type() == QEvent::WindowBlocked) {
    delay_.stop();
    Vanish();
  } else if (waiting_ && event->type() == QEvent::WindowUnblocked) {
    delay_.start();
  }
  return QWidget::eventFilter(watched, event);
}

void frmWait::closeEvent(QCloseEvent* event) {
  event->ignore();
}

void frmWait::paintEvent(QPaintEvent*) {
  QPainter(this).fillRect(rect(), CurrentLook().veil);
}

}  // namespace dorvane
