#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLineEdit>
#include <QRadioButton>
#include <optional>

#include "ui/controls/gradient_button.h"
#include "ui/controls/wrapped_label.h"
#include "ui/wizard/connection_rules.h"
#include "ui/wizard/encryption_fields.h"
#include "ui/wizard/wizard_page.h"
#include "ui/wizard/wizard_session.h"
#include "ui/wizard/worker_call.h"

namespace dorvane {

/// Pages 1 to 4: connects one endpoint to its server. The page counts as connected while its
/// connect button is disabled; no connection stays open.
class ConnectionPage : public WizardPage {
 public:
  /// `session` and `server_caller` must outlive the page.
  ConnectionPage(std::int16_t index, WizardSession& session, ServerCaller& server_caller,
                 QWidget* parent);

  /// Fills the empty fields as the last run or the defaults have them.
  void Preset();
  GradientButton& ConnectButton() { return *connect_; }
  bool IsConnected() const { return !connect_->Enabled(); }
  /// Whether the connect button stands for creating a database.
  bool CreatesDatabase() const { return connect_->Caption().startsWith(u"Create"); }
  std::string Host() const { return host_->text().toStdString(); }
  /// The entry chosen from the database list.
  std::string ChosenDatabase() const { return databases_->currentText().toStdString(); }
  /// Destination pages: whether a new database is wanted, and its name.
  bool WantsNewDatabase() const { return new_database_->isChecked(); }
  std::string NewName() const { return new_name_->text().toStdString(); }
  /// Proposes a name; the name of a database that this page has created stays.
  void ProposeNewName(const std::string& name);

  /// Copies the fields into the endpoint, which may be newer than the connection.
  void ApplyToEndpoint() const { ApplyFields(Typed(), Endpoint()); }

  /// Fills the fields with what an endpoint says; its database is chosen when the page connects.
  void Fill(const IDatabase& endpoint);
  /// Destination pages: an existing database is to be used, in this mode.
  void ChooseExisting(std::int16_t convert_mode);

  /// What choosing a direction does to the page: empty fields and no connection.
  void Reset();
  /// Shows the merge mode that a new source endpoint starts with.
  void ShowMerge() { merge_->setChecked(true); }
  void TickWindowsLogin();

 private:
  void AddServerCard();
  void AddSourceCard();
  void AddDestinationCard();
  void AddButtons();
  QLineEdit& AddField(QGridLayout& grid, int row, int column, const char* name, const char* label,
                      int limit);

  IDatabase& Endpoint() const { return traits_.is_destination ? *session_.dest : *session_.src; }
  TypedSettings Typed() const;
  bool UsesWindowsLogin() const { return windows_login_ && windows_login_->isChecked(); }
  QWidget* FocusFor(FieldRefusal::Field field);

  /// What a connection was made with can't be changed while it counts.
  void SetConnected(bool connected);
  void ShowWhatCanBeTyped();
  void OnWindowsLogin();
  void OnExistingDatabase();
  void OnNewDatabase();
  void OnConnect();
  void OnDisconnect();
  bool ListDatabases();
  /// Says what the server is, where it has told.
  void ShowServerInfo();
  bool CreateDatabase(const std::string& name);

  const ConnectionPageTraits& traits_;
  std::optional<ServerInfo> info_;
  std::string wanted_database_;
  WizardSession& session_;
  ServerCaller& server_caller_;

  QLineEdit* host_ = nullptr;
  QLineEdit* port_ = nullptr;
  QLineEdit* user_ = nullptr;
  QLineEdit* password_ = nullptr;
  QCheckBox* windows_login_ = nullptr;  // pages of MS SQL Server only
  EncryptionFields* encryption_ = nullptr;
  QComboBox* databases_ = nullptr;
  GradientButton* connect_ = nullptr;
  GradientButton* disconnect_ = nullptr;
  WrappedLabel* server_info_ = nullptr;
  // Destination pages only.
  QRadioButton* existing_database_ = nullptr;
  QRadioButton* new_database_ = nullptr;
  QLineEdit* new_name_ = nullptr;
  QRadioButton* merge_ = nullptr;
  QRadioButton* overwrite_ = nullptr;
};

}  // namespace dorvane
