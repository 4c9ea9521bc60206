#include "ui/wizard/connection_page.h"

#include <fmt/format.h>

#include <algorithm>

#include "platform/text/number_text.h"
#include "ui/dialogs/message_box.h"
#include "ui/look/current_look.h"
#include "ui/wizard/connection_history.h"
#include "ui/wizard/theme.h"

namespace dorvane {

void ConnectionPage::Preset() {
  TypedSettings typed = Typed();
  PresetFields(traits_, session_.last, typed);
  host_->setText(QString::fromStdString(typed.settings.server));
  user_->setText(QString::fromStdString(typed.settings.user_id));
  password_->setText(QString::fromStdString(typed.settings.password));
  port_->setText(QString::fromStdString(typed.port));
}

TypedSettings ConnectionPage::Typed() const {
  return {.settings = {.server = host_->text().toStdString(),
                       .user_id = user_->text().toStdString(),
                       .password = password_->text().toStdString(),
                       .integrated_security = UsesWindowsLogin(),
                       .encryption = encryption_->Encryption(),
                       .ca_file = encryption_->CaFile()},
          .port = port_->text().toStdString()};
}

void ConnectionPage::ProposeNewName(const std::string& name) {
  const bool created = IsConnected() && WantsNewDatabase();
  if (!created) new_name_->setText(QString::fromStdString(name));
}

void ConnectionPage::Reset() {
  for (QLineEdit* field : {host_, user_, password_, port_}) field->clear();
  wanted_database_.clear();
  encryption_->Clear();
  databases_->clear();
  databases_->setEnabled(false);
  if (traits_.is_destination) new_name_->setEnabled(WantsNewDatabase());
  SetConnected(false);
}

void ConnectionPage::Fill(const IDatabase& endpoint) {
  const ado::ConnectionSettings& settings = endpoint.Settings();
  host_->setText(QString::fromStdString(settings.server));
  port_->setText(QString::number(settings.port));
  user_->setText(QString::fromStdString(settings.user_id));
  password_->setText(QString::fromStdString(settings.password));
  encryption_->Choose(settings.encryption, settings.ca_file);
  wanted_database_ = settings.database;
  if (!windows_login_) return;
  windows_login_->setChecked(settings.integrated_security);
  OnWindowsLogin();
}

void ConnectionPage::ChooseExisting(std::int16_t convert_mode) {
  existing_database_->setChecked(true);
  OnExistingDatabase();
  (convert_mode == dorvane::convert_mode::kOverwrite ? overwrite_ : merge_)->setChecked(true);
}

void ConnectionPage::SetConnected(bool connected) {
  connect_->SetEnabled(!connected);
  server_info_->clear();
  // A disabled button would hand the focus on to Cancel.
  if (disconnect_->hasFocus()) connect_->setFocus();
  disconnect_->SetEnabled(connected);
  if (windows_login_) windows_login_->setEnabled(!connected);
  encryption_->SetEnabled(!connected);
  for (QLineEdit* field : {host_, port_, user_, password_}) field->setReadOnly(connected);
  ShowWhatCanBeTyped();
  if (!traits_.is_destination) return;
  existing_database_->setEnabled(!connected);
  new_database_->setEnabled(!connected);
}

void ConnectionPage::ShowWhatCanBeTyped() {
  for (QLineEdit* field : {host_, port_, user_, password_}) {
    const bool open = field->isEnabledTo(this) && !field->isReadOnly();
    const Look& look = CurrentLook();
    theme::SetColor(*field, QPalette::Base,
                    open ? look.page.color(QPalette::Base) : look.closed_field);
  }
}

void ConnectionPage::TickWindowsLogin() {
  windows_login_->setChecked(true);
  OnWindowsLogin();
}

void ConnectionPage::OnWindowsLogin() {
  const bool ticked = windows_login_->isChecked();
  Endpoint().SetWinNTAuthentication(ticked);
  for (QLineEdit* field : {user_, password_}) field->setEnabled(!ticked);
  ShowWhatCanBeTyped();
}

void ConnectionPage::OnExistingDatabase() {
  merge_->setEnabled(true);
  overwrite_->setEnabled(true);
  new_name_->setEnabled(false);
  databases_->clear();
  databases_->setEnabled(false);
  connect_->SetCaption("Connect");
}

void ConnectionPage::OnNewDatabase() {
  merge_->setEnabled(false);
  overwrite_->setEnabled(false);
  new_name_->setEnabled(true);
  connect_->SetCaption("Create New Database");
}

QWidget* ConnectionPage::FocusFor(FieldRefusal::Field field) {
  switch (field) {
    case FieldRefusal::kPort:
      return port_;
    case FieldRefusal::kUser:
      return findChild<QWidget*>(traits_.focus_for_user);
    case FieldRefusal::kNewName:
      return new_name_;
  }
  return nullptr;
}

void ConnectionPage::OnConnect() {
  const TypedSettings typed = Typed();
  std::optional<std::string> new_name;
  if (traits_.is_destination && WantsNewDatabase()) new_name = NewName();
  if (const auto refusal = CheckFields(traits_, typed, new_name)) {
    ShowMessage(refusal->message, refusal->style, "");
    FocusFor(refusal->field)->setFocus();
    return;
  }
  bool connected = false;
  try {
    ApplyFields(typed, Endpoint());
    connected = new_name ? CreateDatabase(std::string(text::Trim(*new_name))) : ListDatabases();
  } catch (...) {
    const ErrorSummary failure = CurrentFailure();
    ShowMessage(FailureText(traits_, failure.number, failure.description), traits_.failure.style,
                "");
    return;
  }
  if (!connected) return;
  SetConnected(true);
  ShowServerInfo();
  RememberConnection(traits_.server, {host_->text(), port_->text(),
                                      UsesWindowsLogin() ? QString() : user_->text()});
}

void ConnectionPage::ShowServerInfo() {
  if (!info_) return;
  std::string text = info_->product + " " + info_->version;
  if (info_->is_encrypted) text += *info_->is_encrypted ? ", encrypted" : ", not encrypted";
  const int databases = databases_->count();
  if (databases > 0)
    text += fmt::format(", {} {}", databases, databases == 1 ? "database" : "databases");
  server_info_->setText(QString::fromStdString(text));
}

bool ConnectionPage::ListDatabases() {
  std::optional<NameList> names;
  server_caller_.Run([&] {
    names = Endpoint().GetDatabases();
    info_ = names ? Endpoint().GetServerInfo() : std::nullopt;
  });
  if (!names) return false;
  databases_->clear();
  for (const std::string& name : *names) {
    databases_->addItem(QString::fromStdString(name));
    databases_->setItemData(databases_->count() - 1, QString::fromStdString(name), Qt::ToolTipRole);
  }
  const int wanted = databases_->findText(QString::fromStdString(wanted_database_),
                                          Qt::MatchFixedString | Qt::MatchCaseSensitive);
  databases_->setCurrentIndex(names->empty() ? -1 : std::max(wanted, 0));
  databases_->setEnabled(true);
  databases_->setFocus();
  return true;
}

bool ConnectionPage::CreateDatabase(const std::string& name) {
  bool created = false;
  server_caller_.Run([&] {
    created = Endpoint().CreateDatabase(name);
    info_ = created ? Endpoint().GetServerInfo() : std::nullopt;
  });
  if (!created) return false;
  // The field now says what was created; the table page takes the database's name from it.
  new_name_->setText(QString::fromStdString(name));
  new_name_->setEnabled(false);
  return true;
}

void ConnectionPage::OnDisconnect() {
  SetConnected(false);
  connect_->setFocus();
  databases_->clear();
  databases_->setEnabled(false);
  if (!traits_.is_destination) return;
  existing_database_->setChecked(true);
  OnExistingDatabase();
}

}  // namespace dorvane
