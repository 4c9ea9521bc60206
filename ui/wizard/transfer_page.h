#pragma once

#include <QProgressBar>

#include "ui/controls/gradient_button.h"
#include "ui/controls/name_list_view.h"
#include "ui/controls/wrapped_label.h"
#include "ui/wizard/messages_pane.h"
#include "ui/wizard/outcomes_view.h"
#include "ui/wizard/transfer_progress.h"
#include "ui/wizard/wizard_page.h"
#include "ui/wizard/wizard_run.h"

namespace dorvane {

/// Page 6: starts the conversion and shows how it goes.
class TransferPage : public WizardPage {
  Q_OBJECT

 public:
  explicit TransferPage(QWidget* parent);

  GradientButton& TransferButton() { return *cmdTransferTables_; }
  /// Shows what will be done and fills the list of tables that wait.
  void SetPlan(const std::string& plan, NameList tables);
  /// The tables that are not converted.
  const NameList& Waiting() const { return lstSelectedTables_->Names(); }
  /// Lists tables that have ended. The converted ones no longer wait.
  void AddOutcomes(const std::vector<TableOutcome>& tables);
  /// Adds to the messages, which show with the first one.
  void AddMessage(Severity severity, const std::string& table, const std::string& message);
  WizardRun::TableCounts Counts() const;
  void Show(const TransferProgress& progress);
  void ConversionStarted();
  /// Offers to transfer the tables that are left.
  void ConversionEnded();
  /// Nothing could be converted: it can be tried again.
  void ConversionGivenBack();

 signals:
  void TransferRequested();
  void PreviewRequested();
  /// The tables that are left are to be transferred.
  void RestRequested();
  void StopRequested();
  void ScheduleRequested();
  /// The conversion is to be written into a settings file.
  void SaveRequested();
  void ReportRequested();
  void TasksRequested();

 private:
  void AddProgress();
  void AddLists();
  void AddButtons();

  WrappedLabel* lblPlan_;
  WrappedLabel* lblStatus_;
  QProgressBar* pbTablesProgress_;
  QProgressBar* pbRecordsProgress_;
  WrappedLabel* lblRowsProgress_;
  WrappedLabel* lblOverall_;  // the time of the run, in the end what failed
  NameListView* lstSelectedTables_;
  OutcomesView* lstConvertedTables_;
  MessagesPane* messages_;
  GradientButton* cmdTransferTables_;
  GradientButton* cmdPreview_;
  GradientButton* cmdSchedule_;
  GradientButton* cmdSaveSettings_;
  GradientButton* cmdSaveReport_;  // of a run that is over
  GradientButton* cmdStop_;
  GradientButton* cmdTransferRest_;
};

}  // namespace dorvane
