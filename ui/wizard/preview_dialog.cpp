#include "ui/wizard/preview_dialog.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QShortcut>
#include <QVBoxLayout>

#include "ui/controls/make_child.h"
#include "ui/controls/soft_button.h"
#include "ui/dialogs/save_text.h"
#include "ui/look/current_look.h"

namespace dorvane {

PreviewDialog::PreviewDialog(QWidget* parent) : QDialog(parent) {
  setObjectName("frmPreview");
  setWindowTitle("What will happen");
  FollowPalette(*this, &Look::window);
  QWidget& self = *this;
  auto& layout = MakeChild<QVBoxLayout>(self);
  layout.setContentsMargins(kDialogMargin, kDialogMargin, kDialogMargin, kDialogMargin);
  layout.setSpacing(kDialogGap);
  lblOutcome_ = &MakeNamed<QLabel>("lblOutcome", self);
  lblOutcome_->setText("Looking at both databases ......");
  txtScript_ = &MakeNamed<QPlainTextEdit>("txtScript", self);
  txtScript_->setAccessibleName("What will happen");
  txtScript_->setReadOnly(true);
  txtScript_->setLineWrapMode(QPlainTextEdit::NoWrap);
  txtScript_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  layout.addWidget(lblOutcome_);
  layout.addWidget(txtScript_, 1);
  auto& row = MakeLayout<QHBoxLayout>(layout);
  row.setSpacing(kDialogGap);
  row.addStretch();
  cmdSave_ = &AddDialogButton("cmdSaveScript", self, "Save as script", 'S');
  cmdSave_->SetEnabled(false);
  auto& cmdClose = AddDialogButton("cmdClosePreview", self, "Close", 'C');
  row.addWidget(cmdSave_);
  row.addWidget(&cmdClose);
  connect(cmdSave_, &QAbstractButton::clicked, this, &PreviewDialog::Save);
  connect(&cmdClose, &QAbstractButton::clicked, this, &PreviewDialog::reject);
  auto& help_key = MakeChild<QShortcut>(self, QKeySequence(Qt::Key_F1));
  connect(&help_key, &QShortcut::activated, this, &PreviewDialog::HelpRequested);
  resize(760, 480);
}

void PreviewDialog::Append(std::string_view lines) {
  QMetaObject::invokeMethod(
      txtScript_,
      [this, text = QString::fromUtf8(lines.data(), static_cast<qsizetype>(lines.size()))] {
        txtScript_->appendPlainText(text);
      });
}

void PreviewDialog::End(const QString& outcome) {
  has_ended_ = true;
  if (is_closing_) return QDialog::reject();
  lblOutcome_->setText(outcome);
  cmdSave_->SetEnabled(true);
  txtScript_->moveCursor(QTextCursor::Start);
}

void PreviewDialog::reject() {
  if (has_ended_) return QDialog::reject();
  is_closing_ = true;
  lblOutcome_->setText("Stopping ......");
  emit StopRequested();
}

void PreviewDialog::Save() {
  SaveTextAs(*this,
             {.name = "cdScript",
              .title = "Save the script",
              .proposal = "preview.sql",
              .filters = {"sql (*.sql)"}},
             "script", txtScript_->toPlainText() + '\n');
}

}  // namespace dorvane
