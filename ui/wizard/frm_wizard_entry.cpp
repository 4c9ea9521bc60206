// What happens when a page is entered: checks, presets, and what the pages before it have settled.
#include "ui/dialogs/message_box.h"
#include "ui/wizard/frm_wizard.h"
#include "ui/wizard/transfer_plan.h"

namespace dorvane {

namespace {

constexpr const char* kConnectFirst = "Please click connect to database button";

bool Refuse(const char* message, std::int32_t style) {
  ShowMessage(message, style, "");
  return false;
}

}  // namespace

bool frmWizard::EnterPage(std::int16_t page) {
  switch (page) {
    case page::kMsSqlSource:
    case page::kMySqlSource:
      return EnterSource(page);
    case page::kMySqlDestination:
    case page::kMsSqlDestination:
      return EnterDestination(page);
    case page::kTables:
      return EnterTables();
    case page::kTransfer:
      return EnterTransfer();
    default:
      return true;
  }
}

bool frmWizard::EnterSource(std::int16_t page) {
  Page(page).Preset();
  return true;
}

bool frmWizard::EnterDestination(std::int16_t page) {
  const ConnectionPage& source = Page(SourcePage(session_.Direction()));
  ConnectionPage& destination = Page(page);
  if (!source.IsConnected()) return Refuse(kConnectFirst, message_style::kPlain);
  source.ApplyToEndpoint();
  destination.ProposeNewName(source.ChosenDatabase());
  destination.Preset();
  const bool is_going_back = mnCurStep_ == page::kTables;
  // Whoever goes back can mend the connection, whatever has become of it.
  return LoadTableLists(source) || is_going_back;
}

bool frmWizard::LoadTableLists(const ConnectionPage& source) {
  tables_page_->ClearLists();
  tables_loaded_ = false;
  session_.src->SetDbName(source.ChosenDatabase());
  session_.src->SetServer(source.Host());
  std::optional<NameList> tables;
  try {
    server_caller_.Run([&] { tables = session_.src->GetTablesFromDatabase(); });
  } catch (...) {
    return Refuse(DescribeUnexpectedFailure().c_str(), message_style::kError);
  }
  if (!tables) return false;  // the endpoint has said why
  tables_page_->SetAvailable(std::move(*tables), session_.src->Kind() == ServerKind::MsSql);
  tables_loaded_ = true;
  sizes_.Ask(*session_.src);
  return true;
}

bool frmWizard::EnterTables() {
  const std::int16_t index = DestinationPage(session_.Direction());
  const ConnectionPage& destination = Page(index);
  const auto& not_ready = TraitsOf(index).not_ready;
  if (!destination.IsConnected()) {
    return Refuse(destination.CreatesDatabase() ? not_ready.create_first : kConnectFirst,
                  not_ready.style);
  }
  destination.ApplyToEndpoint();
  if (destination.WantsNewDatabase()) {
    const std::string name = destination.NewName();
    if (name.empty()) return Refuse(not_ready.name_first, not_ready.style);
    session_.dest->SetDbName(name);
  } else {
    session_.dest->SetDbName(destination.ChosenDatabase());
  }
  if (!tables_loaded_ && !LoadTableLists(Page(SourcePage(session_.Direction())))) return false;
  blnFinishAllowed_ = false;
  return true;
}

bool frmWizard::EnterTransfer() {
  if (mnCurStep_ == page::kPreview) return LeavePreview();
  if (tables_page_->Selected().empty()) {
    return Refuse("Please select at least one table to convert", message_style::kInformation);
  }
  session_.tables = tables_page_->Selected();
  blnFinishAllowed_ = true;
  session_.src->SetDbName(Page(SourcePage(session_.Direction())).ChosenDatabase());
  tables_page_->ApplyOptions(*session_.src);
  transfer_page_->SetPlan(PlanText(*session_.src, *session_.dest, session_.tables.size()),
                          session_.tables);
  return true;
}

bool frmWizard::LeavePreview() {
  if (!run_.IsPreviewing()) return true;
  // The page is left when the servers have answered.
  NavButton(kBack).SetEnabled(false);
  preview_page_->Stopping();
  run_.StopPreview();
  return false;
}

}  // namespace dorvane
