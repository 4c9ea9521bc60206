#pragma once

#include <QLabel>
#include <QStackedWidget>
#include <QTimer>
#include <QWidget>
#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>

#include "job/endpoints.h"
#include "job/run_recorder.h"
#include "ui/controls/gradient_button.h"
#include "ui/controls/picture_box.h"
#include "ui/wizard/connection_page.h"
#include "ui/wizard/desktop_link.h"
#include "ui/wizard/direction_page.h"
#include "ui/wizard/preview_page.h"
#include "ui/wizard/sizes_question.h"
#include "ui/wizard/tables_page.h"
#include "ui/wizard/theme.h"
#include "ui/wizard/transfer_page.h"
#include "ui/wizard/wizard_run.h"
#include "ui/wizard/wizard_session.h"
#include "ui/wizard/wizard_steps.h"
#include "ui/wizard/worker_call.h"

class QHBoxLayout;

namespace dorvane {

/// What the wizard gets from its surroundings. All of it must be set.
struct WizardServices {
  HostedEndpointFactory make_endpoint;
  std::filesystem::path settings_folder;  // of "config"
  std::function<void(std::int32_t context)> show_help;
  std::function<void(const IDatabase& src, const IDatabase& dest, const NameList& tables,
                     QWidget* parent)>
      show_schedule;
  /// Shows the tasks that are scheduled already.
  std::function<void(QWidget* parent)> show_tasks;
  /// Ends the process at once, whatever its threads are waiting for. Does not return.
  std::function<void()> end_process;
};

/// The wizard window: step list, title line, eight pages of which one is shown, and the navigation
/// bar. Every control carries its name as object name; of an array of controls, the name and the
/// index ("cmdNav1", "lblleft0", "shpCircle0", "fraStep6").
class frmWizard : public QWidget {
  Q_OBJECT

 public:
  explicit frmWizard(WizardServices services);
  ~frmWizard() override;

  /// Shows the first page, reads the last run's values and chooses their direction.
  void Load();

  /// Fills the wizard with a settings file and shows its source page. Says why when the file
  /// cannot be used.
  void OpenSettings(const std::filesystem::path& path);

  /// Prepares a page and shows it, unless something is missing: that is told and the current page
  /// stays.
  void ShowStep(std::int16_t page);
  void SetStepTitle(std::int16_t page);
  void SetNavigationButtons(std::int16_t page);
  void HighlightStepIndicator(std::int16_t page);

  std::int16_t CurrentPage() const { return mnCurStep_; }
  const WizardSession& Session() const { return session_; }

 signals:
  /// The window was closed: the program ends.
  void Closed();

 protected:
  void closeEvent(QCloseEvent* event) override;
  /// A settings file may be dropped on the window.
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  enum Nav { kCancel = 1, kBack = 2, kNext = 3, kFinish = 4 };

  void BuildWindow();
  void AddDefaultButton();
  QWidget& BuildSidebar();
  QWidget& BuildTitleLine();
  QWidget& BuildPages();
  QWidget& BuildNavigationBar();
  void AddHelpPicture(PictureBox& bar, QHBoxLayout& layout);
  void ConnectRun();
  void ShowProgress(const TransferProgress& progress);

  /// Gives the focus to the first control of the page in its tab order.
  void FocusFirstControl(QWidget& page);
  /// Gives the focus to Next when the page has connected and no control of it has the focus.
  void FocusNextAfterConnecting(const ConnectionPage& page);

  // What happens when a page is entered; false when it refuses.
  bool EnterPage(std::int16_t page);
  bool EnterSource(std::int16_t page);
  bool EnterDestination(std::int16_t page);
  bool EnterTables();
  bool EnterTransfer();
  bool LeavePreview();
  bool LoadTableLists(const ConnectionPage& source);

  ConnectionPage& Page(std::int16_t page) { return *connection_pages_.at(page); }
  GradientButton& NavButton(Nav button) { return *nav_buttons_[static_cast<std::size_t>(button)]; }

  void ChooseDirection(ServerKind source);
  void Transfer(const NameList& tables);
  /// Asks for a file and writes the conversion into it.
  void SaveSettings();
  /// A server is at work for the wizard.
  bool IsBusy() const {
    return run_.IsTransferring() || run_.IsPreviewing() || server_caller_.IsWaiting();
  }
  /// The numbers of a run's summary.
  WizardRun::TableCounts Counts() const;
  void ShowPreview();
  void Cancel();
  /// Ends the program when the servers have answered. Asked once more, or after some seconds, it
  /// does not wait for them any longer.
  void Leave();
  void Finish();
  /// Keeps the typed values for the next run. Throws RunTimeError.
  void KeepValues();
  void ShowHelp();

  WizardServices services_;
  WizardRun run_;
  RunRecorder recorder_{run_, run_};  // outlives the endpoints that report to it
  RunReport report_;                  // of the last run
  WizardSession session_;
  ServerCaller server_caller_;
  SizesQuestion sizes_;
  DesktopLink desktop_;

  std::int16_t mnCurStep_ = page::kDirection;
  std::int16_t currentScreen_ = 0;
  bool blnFinishAllowed_ = false;
  bool values_kept_ = false;
  bool tables_loaded_ = false;        // of the source database that is chosen
  std::optional<int> percent_shown_;  // in the window's title
  QTimer leaving_;                    // runs while the servers are waited for

  std::array<QLabel*, kStepCount> step_labels_{};
  std::array<theme::StepMarker*, kStepCount> step_markers_{};
  QLabel* lblTitle_ = nullptr;
  QStackedWidget* pages_ = nullptr;
  std::array<GradientButton*, 5> nav_buttons_{};  // index 0 is not used
  PictureBox* imgHelp_ = nullptr;
  DirectionPage* direction_page_ = nullptr;
  std::map<std::int16_t, ConnectionPage*> connection_pages_;
  TablesPage* tables_page_ = nullptr;
  TransferPage* transfer_page_ = nullptr;
  PreviewPage* preview_page_ = nullptr;
};

}  // namespace dorvane
