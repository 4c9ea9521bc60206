#include "ui/wizard/preview_page.h"

#include <QFontDatabase>
#include <QHBoxLayout>

#include "ui/controls/make_child.h"
#include "ui/controls/wrapped_label.h"
#include "ui/dialogs/save_text.h"
#include "ui/wizard/theme.h"
#include "ui/wizard/wizard_steps.h"

namespace dorvane {

PreviewPage::PreviewPage(QWidget* parent) : WizardPage(page::kPreview, parent) {
  QWidget& self = *this;
  lblOutcome_ = &MakeNamed<WrappedLabel>("lblOutcome", self);
  txtScript_ = &MakeNamed<QPlainTextEdit>("txtScript", self);
  txtScript_->setAccessibleName("What will happen");
  txtScript_->setReadOnly(true);
  txtScript_->setTabChangesFocus(true);
  txtScript_->setLineWrapMode(QPlainTextEdit::NoWrap);
  txtScript_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  txtScript_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
  cmdSave_ = &theme::AddButton("cmdSaveScript", self, "Save as script", 'S');
  Content().addWidget(lblOutcome_);
  Content().addWidget(txtScript_, 1);
  auto& row = MakeLayout<QHBoxLayout>(Content());
  row.addWidget(cmdSave_);
  row.addStretch();
  connect(cmdSave_, &QAbstractButton::clicked, this, &PreviewPage::Save);
}

void PreviewPage::Begin() {
  txtScript_->clear();
  cmdSave_->SetEnabled(false);
  lblOutcome_->setText("Looking at both databases ......");
}

void PreviewPage::Append(std::string_view lines) {
  QMetaObject::invokeMethod(
      txtScript_,
      [this, text = QString::fromUtf8(lines.data(), static_cast<qsizetype>(lines.size()))] {
        txtScript_->appendPlainText(text);
      });
}

void PreviewPage::Stopping() {
  lblOutcome_->setText("Stopping ......");
}

void PreviewPage::End(const QString& outcome) {
  lblOutcome_->setText(outcome);
  cmdSave_->SetEnabled(true);
  txtScript_->moveCursor(QTextCursor::Start);
}

void PreviewPage::Save() {
  SaveTextAs(*this,
             {.name = "cdScript",
              .title = "Save the script",
              .proposal = "preview.sql",
              .filters = {"sql (*.sql)"}},
             "script", txtScript_->toPlainText() + '\n');
}

}  // namespace dorvane
