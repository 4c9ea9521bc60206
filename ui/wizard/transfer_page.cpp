#include "ui/wizard/transfer_page.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <utility>

#include "ui/controls/make_child.h"
#include "ui/wizard/theme.h"
#include "ui/wizard/wizard_steps.h"

namespace dorvane {

namespace {

QProgressBar& AddBar(const char* name, const char* caption, QWidget& parent, QGridLayout& grid,
                     int row) {
  auto& label = MakeChild<QLabel>(parent, caption);
  auto& bar = MakeNamed<QProgressBar>(name, parent);
  bar.setRange(0, 1);
  bar.setValue(0);
  bar.setAccessibleName(caption);
  grid.addWidget(&label, row, 0);
  grid.addWidget(&bar, row, 1);
  return bar;
}

void SetBar(QProgressBar& bar, const TransferProgress::Bar& state) {
  bar.setMaximum(std::max(state.maximum, 1));
  bar.setValue(state.value);
}

}  // namespace

TransferPage::TransferPage(QWidget* parent) : WizardPage(page::kTransfer, parent) {
  lblPlan_ = &MakeNamed<WrappedLabel>("lblPlan", static_cast<QWidget&>(*this));
  Content().addWidget(lblPlan_);
  AddButtons();
  AddProgress();
  AddLists();
  Show(TransferProgress());
}

void TransferPage::AddButtons() {
  cmdTransferTables_ = &theme::AddButton("cmdTransferTables", *this, "Transfer Tables Now", 'T');
  cmdPreview_ = &theme::AddButton("cmdPreview", *this, "What will happen", 'W');
  cmdSchedule_ = &theme::AddButton("cmdSchedule", *this, "Schedule Conversion", 'S');
  cmdSchedule_->SetEnabled(false);
  cmdSaveSettings_ = &theme::AddButton("cmdSaveSettings", *this, "Save as settings file", 'i');
  cmdSaveSettings_->setToolTip("Dorvane runs such a file without a window, and opens it again");
  cmdSaveReport_ = &theme::AddButton("cmdSaveReport", *this, "Save report", 'R');
  cmdSaveReport_->SetEnabled(false);
  auto& cmdTasks = theme::AddButton("cmdTasks", *this, "Scheduled tasks", 'K');
  // One row would be wider than a small window.
  using Buttons = std::vector<GradientButton*>;
  for (const Buttons& buttons :
       {Buttons{cmdTransferTables_, cmdPreview_, nullptr, &cmdTasks},
        Buttons{cmdSchedule_, cmdSaveSettings_, cmdSaveReport_, nullptr}}) {
    auto& row = MakeLayout<QHBoxLayout>(Content());
    row.setSpacing(theme::kGap);
    for (GradientButton* button : buttons) button ? row.addWidget(button) : row.addStretch();
  }
  connect(cmdTransferTables_, &QAbstractButton::clicked, this, &TransferPage::TransferRequested);
  connect(cmdPreview_, &QAbstractButton::clicked, this, &TransferPage::PreviewRequested);
  connect(cmdSchedule_, &QAbstractButton::clicked, this, &TransferPage::ScheduleRequested);
  connect(cmdSaveSettings_, &QAbstractButton::clicked, this, &TransferPage::SaveRequested);
  connect(cmdSaveReport_, &QAbstractButton::clicked, this, &TransferPage::ReportRequested);
  connect(&cmdTasks, &QAbstractButton::clicked, this, &TransferPage::TasksRequested);
}

void TransferPage::AddProgress() {
  Card& card = AddCard();
  auto& grid = MakeChild<QGridLayout>(card);
  grid.setContentsMargins(18, 12, 18, 12);
  grid.setHorizontalSpacing(14);
  grid.setVerticalSpacing(8);
  lblStatus_ = &MakeNamed<WrappedLabel>("lblStatus", card);
  lblStatus_->setFont(theme::CaptionFont(font()));
  // Never shown together.
  cmdStop_ = &theme::AddButton("cmdStop", card, "Stop", 'P');
  cmdTransferRest_ =
      &theme::AddButton("cmdTransferRest", card, "Transfer the failed and remaining tables", 'M');
  cmdStop_->SetEnabled(false);
  cmdTransferRest_->hide();
  connect(cmdStop_, &QAbstractButton::clicked, this, &TransferPage::StopRequested);
  connect(cmdTransferRest_, &QAbstractButton::clicked, this, &TransferPage::RestRequested);
  auto& top = MakeLayout<QHBoxLayout>(grid, 0, 0, 1, 2);
  top.addWidget(lblStatus_, 1);
  top.addWidget(cmdStop_, 0, Qt::AlignTop);
  top.addWidget(cmdTransferRest_, 0, Qt::AlignTop);
  pbTablesProgress_ = &AddBar("pbTablesProgress", "Overall Progress", card, grid, 1);
  pbRecordsProgress_ = &AddBar("pbRecordsProgress", "Table Progress", card, grid, 2);
  lblRowsProgress_ = &MakeNamed<WrappedLabel>("lblRowsProgress", card);
  grid.addWidget(lblRowsProgress_, 3, 1);
  lblOverall_ = &MakeNamed<WrappedLabel>("lblOverall", card);
  grid.addWidget(lblOverall_, 4, 1);
  grid.setColumnStretch(1, 1);
}

void TransferPage::AddLists() {
  auto& area = MakeChild<QWidget>(*this);
  Content().addWidget(&area, 1);
  auto& grid = MakeChild<QGridLayout>(area);
  grid.setContentsMargins(0, 0, 0, 0);
  grid.setHorizontalSpacing(14);
  grid.setVerticalSpacing(5);
  lstSelectedTables_ = &MakeNamed<NameListView>("lstSelectedTables", area);
  // Names go one by one here: the visible ones are laid out first, the rest when there is time.
  lstSelectedTables_->setLayoutMode(QListView::Batched);
  lstConvertedTables_ = &MakeNamed<OutcomesView>("lstConvertedTables", area);
  const auto add = [&](QAbstractItemView& list, const char* caption, int column, int stretch) {
    auto& label = MakeChild<QLabel>(area, caption);
    // Takes the room there is; its contents do not make the window higher.
    list.setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    label.setBuddy(&list);
    list.setAccessibleName(QString(caption).remove('&').trimmed());
    grid.addWidget(&label, 0, column);
    grid.addWidget(&list, 1, column);
    grid.setColumnStretch(column, stretch);
  };
  add(*lstSelectedTables_, "Tables in &que", 0, 1);
  add(*lstConvertedTables_, "Con&verted tables ", 1, 3);
  for (const int row : {1, 2}) grid.setRowStretch(row, 1);
  messages_ = &MakeNamed<MessagesPane>("messages", area);
  grid.addWidget(messages_, 2, 0, 1, 2);
  messages_->hide();
}

void TransferPage::SetPlan(const std::string& plan, NameList tables) {
  lblPlan_->setText(QString::fromStdString(plan));
  lstSelectedTables_->SetNames(std::move(tables), -1);
  lstConvertedTables_->Clear();
}

void TransferPage::AddOutcomes(const std::vector<TableOutcome>& tables) {
  lstConvertedTables_->Add(tables);
  for (const TableOutcome& table : tables) {
    if (table.state == TableState::Done) lstSelectedTables_->RemoveFirst(table.name);
  }
}

void TransferPage::AddMessage(Severity severity, const std::string& table,
                              const std::string& message) {
  messages_->show();
  lstConvertedTables_->Tell(severity, table, message);
  messages_->Add(severity, QString::fromStdString(table), QString::fromStdString(message));
}

WizardRun::TableCounts TransferPage::Counts() const {
  return {lstConvertedTables_->ConvertedCount(), lstSelectedTables_->Names().size()};
}

void TransferPage::Show(const TransferProgress& progress) {
  const QString status = QString::fromStdString(progress.Status());
  if (lblStatus_->text() != status) lblStatus_->setText(status);
  SetBar(*pbTablesProgress_, progress.Tables());
  SetBar(*pbRecordsProgress_, progress.Records());
  lblRowsProgress_->setText(QString::fromStdString(progress.RowsText()));
  lblOverall_->setText(QString::fromStdString(
      progress.Percent() ? progress.TimeText() : lstConvertedTables_->Failures()));
}

void TransferPage::ConversionStarted() {
  cmdSchedule_->SetEnabled(false);
  cmdSaveSettings_->SetEnabled(false);
  cmdSaveReport_->SetEnabled(false);
  cmdTransferTables_->SetEnabled(false);
  cmdPreview_->SetEnabled(false);
  cmdTransferRest_->hide();
  lstConvertedTables_->ForgetUnconverted();
  cmdStop_->show();
  cmdStop_->SetEnabled(true);
}

void TransferPage::ConversionEnded() {
  cmdSchedule_->SetEnabled(true);
  cmdSaveSettings_->SetEnabled(true);
  cmdSaveReport_->SetEnabled(true);
  cmdStop_->SetEnabled(false);
  if (Waiting().empty()) return;
  cmdStop_->hide();
  cmdTransferRest_->show();
}

void TransferPage::ConversionGivenBack() {
  cmdSaveSettings_->SetEnabled(true);
  cmdStop_->SetEnabled(false);
  cmdSaveReport_->SetEnabled(true);
  cmdTransferTables_->SetEnabled(true);
  cmdPreview_->SetEnabled(true);
  cmdTransferTables_->setFocus();
}

}  // namespace dorvane
