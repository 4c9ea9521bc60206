#include "ui/dialogs/frm_wait.h"

#include <QCloseEvent>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

#include "ui/controls/make_child.h"

namespace dorvane {

frmWait::frmWait(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint) {
  setObjectName("frmWait");
  setWindowTitle("Connecting......");
  setWindowModality(Qt::ApplicationModal);

  auto& layout = MakeChild<QVBoxLayout>(*this);
  layout.setContentsMargins(32, 24, 32, 26);
  layout.setSpacing(14);
  auto& text = MakeNamed<QLabel>("lblWait", *this, "Please wait");
  text.setAlignment(Qt::AlignCenter);
  layout.addWidget(&text);
  auto& moving = MakeNamed<QProgressBar>("pbWait", *this);
  moving.setRange(0, 0);
  moving.setTextVisible(false);
  moving.setFixedSize(220, 10);
  layout.addWidget(&moving);
  layout.setSizeConstraint(QLayout::SetFixedSize);
}

void frmWait::closeEvent(QCloseEvent* event) {
  event->ignore();
}

}  // namespace dorvane
