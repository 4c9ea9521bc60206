#include "ui/wizard/frm_wizard.h"

#include <QApplication>
#include <QCloseEvent>

#include "ui/controls/qt_text.h"
#include "ui/controls/user_input.h"
#include "ui/dialogs/message_box.h"
#include "ui/look/current_look.h"
#include "ui/wizard/theme.h"

namespace dorvane {

namespace {

constexpr std::chrono::seconds kLongestLeave(5);

}  // namespace

frmWizard::frmWizard(WizardServices services)
    : services_(std::move(services)), server_caller_(*this), sizes_(services_.make_endpoint) {
  setObjectName("frmWizard");
  setAcceptDrops(true);
  BuildWindow();
  FollowLook(*this, [this](const Look&) { HighlightStepIndicator(mnCurStep_); });
  ConnectRun();
  ShowMessagesOver(*this);
  leaving_.setSingleShot(true);
  leaving_.setInterval(kLongestLeave);
  connect(&leaving_, &QTimer::timeout, this, [this] { services_.end_process(); });
}

frmWizard::~frmWizard() = default;

void frmWizard::ConnectRun() {
  run_.SetTableCounts([this] { return Counts(); });
  connect(&run_, &WizardRun::ProgressChanged, this, [this] { ShowProgress(run_.Progress()); });
  connect(&run_, &WizardRun::TablesEnded, transfer_page_, &TransferPage::AddOutcomes);
  connect(&run_, &WizardRun::Told, transfer_page_, &TransferPage::AddMessage);
  connect(&sizes_, &SizesQuestion::Answered, tables_page_, &TablesPage::SetSizes);
  connect(&sizes_, &SizesQuestion::Idle, this, [this] {
    if (leaving_.isActive()) close();
  });
  connect(&run_, &WizardRun::SummaryReady, this, [this](const std::string& summary) {
    if (QApplication::activeWindow()) return;
    desktop_.Notify(windowTitle(), QString::fromStdString(summary).remove('\r'));
  });
  connect(&run_, &WizardRun::Started, this, [this] {
    NavButton(kCancel).setFocus();
    transfer_page_->ConversionStarted();
    for (const Nav button : {kNext, kBack, kFinish}) NavButton(button).SetEnabled(false);
  });
  connect(&run_, &WizardRun::Ended, this, [this] {
    report_ = recorder_.Report();
    NavButton(kFinish).SetEnabled(true);
    NavButton(kFinish).setFocus();
    NavButton(kCancel).SetEnabled(false);
    transfer_page_->ConversionEnded();
  });
}

void frmWizard::ShowProgress(const TransferProgress& progress) {
  transfer_page_->Show(progress);
  const std::optional<int> percent = progress.Percent();
  if (percent == percent_shown_) return;
  percent_shown_ = percent;
  desktop_.ShowPercent(percent);
  const QString caption = ToQString(*WindowCaption(1, session_.Direction()));
  setWindowTitle(percent ? QString("%1 % - %2").arg(*percent).arg(caption) : caption);
}

void frmWizard::Load() {
  ShowStep(page::kDirection);
  session_.last = LoadLastSettings(services_.settings_folder, [](std::string_view message) {
    ShowMessage(message, message_style::kError, "Dorvane");
  });
  const bool from_ms_sql = session_.last[LastSettings::kDirection] == "mssql";
  direction_page_->Choose(from_ms_sql ? ServerKind::MsSql : ServerKind::MySql);
  if (session_.last[LastSettings::kWinAuth] == "true") {
    Page(from_ms_sql ? page::kMsSqlSource : page::kMsSqlDestination).TickWindowsLogin();
  }
  FocusFirstControl(*direction_page_);
}

void frmWizard::ChooseDirection(ServerKind source) {
  const bool from_ms_sql = source == ServerKind::MsSql;
  for (const std::int16_t page : {page::kMsSqlSource, page::kMySqlDestination}) {
    Page(page).Reset();
  }
  tables_page_->ClearLists();

  session_.src = services_.make_endpoint(source, recorder_);
  session_.dest =
      services_.make_endpoint(from_ms_sql ? ServerKind::MySql : ServerKind::MsSql, recorder_);
  if (from_ms_sql) {
    session_.src->SetPortNo(1433);
    session_.src->SetServer("localhost");
    session_.src->SetUserId("sa");
    session_.dest->SetPortNo(3306);
    session_.dest->SetServer("localhost");
    session_.dest->SetUserId("root");
  }
  session_.src->SetListener(&recorder_);
  session_.dest->SetListener(&recorder_);
  for (const std::int16_t page : {page::kMySqlDestination, page::kMsSqlDestination}) {
    Page(page).ShowMerge();
  }
}

void frmWizard::ShowStep(std::int16_t page) {
  if (!EnterPage(page)) return;
  pages_->widget(mnCurStep_)->setEnabled(false);
  pages_->widget(page)->setEnabled(true);
  pages_->setCurrentIndex(page);
  SetStepTitle(page);
  SetNavigationButtons(page);
  HighlightStepIndicator(page);
  FocusFirstControl(*pages_->widget(page));
}

void frmWizard::FocusFirstControl(QWidget& page) {
  QWidget* control = &page;
  do {
    control = control->nextInFocusChain();
    const bool takes_tab = (control->focusPolicy() & Qt::TabFocus) != 0;
    if (takes_tab && page.isAncestorOf(control) && control->isEnabled() && !control->isHidden()) {
      return control->setFocus(Qt::TabFocusReason);
    }
  } while (control != &page);
}

void frmWizard::SetStepTitle(std::int16_t page) {
  const auto step = StepOfPage(page);
  if (!step) return;
  currentScreen_ = *step;
  lblTitle_->setText(ToQString(PageTitle(page)));
  const ServerKind source = session_.src ? session_.Direction() : ServerKind::MsSql;
  if (const auto caption = WindowCaption(*step, source)) setWindowTitle(ToQString(*caption));
}

void frmWizard::SetNavigationButtons(std::int16_t page) {
  mnCurStep_ = page;
  NavButton(kBack).SetEnabled(page != page::kDirection);
  NavButton(kNext).SetEnabled(page < page::kTransfer);
  NavButton(kFinish).SetEnabled(blnFinishAllowed_ && page != page::kPreview);
}

void frmWizard::HighlightStepIndicator(std::int16_t page) {
  const auto current = StepOfPage(page);
  if (!current) return;
  for (std::size_t step = 0; step < kStepCount; ++step) {
    const bool is_current = step == static_cast<std::size_t>(*current);
    const SidebarColors& colors = CurrentLook().sidebar;
    step_markers_[step]->SetFillColor(is_current ? colors.current_marker : colors.other_marker);
    theme::SetColor(*step_labels_[step], QPalette::WindowText,
                    is_current ? colors.current_step : colors.other_step);
    step_labels_[step]->setAccessibleDescription(is_current ? "Current step" : QString());
    ProcessAllButUserInput();
  }
}

void frmWizard::FocusNextAfterConnecting(const ConnectionPage& page) {
  if (page.IsConnected() && !page.isAncestorOf(focusWidget())) NavButton(kNext).setFocus();
}

void frmWizard::Transfer(const NameList& tables) {
  // A copy: the page's list grows shorter meanwhile.
  const bool has_ended = run_.Transfer(*session_.src, *session_.dest, NameList(tables));
  if (leaving_.isActive()) {
    close();
  } else if (!has_ended) {
    report_ = recorder_.Report();
    SetNavigationButtons(mnCurStep_);
    transfer_page_->ConversionGivenBack();
  }
}

WizardRun::TableCounts frmWizard::Counts() const {
  WizardRun::TableCounts counts = transfer_page_->Counts();
  for (const ReportedTable& table : recorder_.Report().tables) {
    if (!table.verification) continue;
    ++counts.compared;
    if (!table.verification->is_failure) ++counts.equal;
  }
  return counts;
}

void frmWizard::ShowPreview() {
  preview_page_->Begin();
  ShowStep(page::kPreview);
  PreviewScript script([this](std::string_view lines) { preview_page_->Append(lines); });
  const bool has_ended = run_.Preview(*session_.src, *session_.dest, session_.tables, script);
  session_.src->SetListener(&recorder_);
  if (leaving_.isActive()) {
    close();
  } else if (has_ended) {
    preview_page_->End(script.Remarks() == 0
                           ? "Nothing would be lost."
                           : QString("Something would be lost or changed: see the lines "
                                     "with \"Lost:\" and \"Note:\"."));
  } else {
    ShowStep(page::kTransfer);
  }
}

void frmWizard::Cancel() {
  if (leaving_.isActive()) return Leave();
  const int answer = AskYesNo("Are you sure you want to exit?", message_style::kQuestion, "",
                              run_.IsTransferring() ? kAnswerNo : kAnswerYes);
  if (answer == kAnswerYes) close();
}

void frmWizard::KeepValues() {
  if (mnCurStep_ == page::kDirection) return;  // there are none
  for (const std::int16_t index :
       {SourcePage(session_.Direction()), DestinationPage(session_.Direction())}) {
    Page(index).Preset();  // a page that was not reached keeps what the last run had
    Page(index).ApplyToEndpoint();
  }
  SaveLastSettings(services_.settings_folder, *session_.src, *session_.dest);
}

void frmWizard::Finish() {
  values_kept_ = true;  // or why not is told
  try {
    SaveLastSettings(services_.settings_folder, *session_.src, *session_.dest);
  } catch (...) {
    ShowMessage(DescribeUnexpectedFailure(), message_style::kError, "");
  }
  close();
}

void frmWizard::ShowHelp() {
  const ServerKind source = session_.src ? session_.Direction() : ServerKind::MsSql;
  services_.show_help(HelpContext(currentScreen_, source));
}

void frmWizard::Leave() {
  if (leaving_.isActive()) return services_.end_process();
  leaving_.start();
  if (run_.IsTransferring()) run_.Stop(true);
  if (run_.IsPreviewing()) LeavePreview();
  server_caller_.Leave();
}

void frmWizard::closeEvent(QCloseEvent* event) {
  if (IsBusy()) {
    event->ignore();
    return Leave();
  }
  if (sizes_.IsBusy()) {
    // Nobody needs the answer any more, but its thread must not outlive the program.
    event->ignore();
    hide();
    return Leave();
  }
  leaving_.stop();
  try {
    if (!values_kept_) KeepValues();
  } catch (...) {
    // Whoever leaves half-way has typed what may be no port, and has nothing to lose.
  }
  event->accept();
  emit Closed();
}

}  // namespace dorvane
