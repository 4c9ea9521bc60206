// How a connection page is built: its controls, where they stand and what they are connected to.
#include <QHBoxLayout>
#include <QLabel>

#include "ui/controls/make_child.h"
#include "ui/controls/option_group.h"
#include "ui/look/current_look.h"
#include "ui/wizard/connection_history.h"
#include "ui/wizard/connection_page.h"
#include "ui/wizard/theme.h"

namespace dorvane {

namespace {

constexpr int kUserLimit = 40;
constexpr int kPortLimit = 8;
constexpr int kNameLimit = 60;

QGridLayout& AddGrid(Card& card) {
  auto& grid = MakeChild<QGridLayout>(card);
  grid.setContentsMargins(18, 14, 18, 14);
  grid.setHorizontalSpacing(14);
  grid.setVerticalSpacing(theme::kGap);
  return grid;
}

QComboBox& AddDatabaseList(const char* name, QWidget& parent) {
  auto& list = MakeNamed<QComboBox>(name, parent);
  // A long name must not widen the window.
  list.setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  list.setMinimumContentsLength(18);
  theme::StyleDropDown(list);
  list.setEnabled(false);
  QObject::connect(&list, &QComboBox::currentTextChanged, &list,
                   [&list](const QString& entry) { list.setToolTip(entry); });
  return list;
}

QRadioButton& AddOption(const char* name, QWidget& parent, const char* caption,
                        OptionGroup& group) {
  auto& option = MakeNamed<QRadioButton>(name, parent, caption);
  group.addButton(&option);
  return option;
}

}  // namespace

ConnectionPage::ConnectionPage(std::int16_t index, WizardSession& session,
                               ServerCaller& server_caller, QWidget* parent)
    : WizardPage(index, parent),
      traits_(TraitsOf(index)),
      session_(session),
      server_caller_(server_caller) {
  const char* header = traits_.server == ServerKind::MsSql
                           ? "Please provide necessary information to establish MS SQL Server "
                             "connection"
                           : "Please provide necessary information to establish MySQL Server "
                             "connection";
  auto& text = MakeChild<QLabel>(*this, header);
  text.setWordWrap(true);
  Content().addWidget(&text);
  AddServerCard();
  traits_.is_destination ? AddDestinationCard() : AddSourceCard();
  AddButtons();
  Content().addStretch();
  FollowLook(*this, [this](const Look&) { ShowWhatCanBeTyped(); });
}

QLineEdit& ConnectionPage::AddField(QGridLayout& grid, int row, int column, const char* name,
                                    const char* label, int limit) {
  QWidget& card = *grid.parentWidget();
  auto& caption = MakeChild<QLabel>(card, label);
  auto& field = MakeNamed<QLineEdit>(name, card);
  field.setMaxLength(limit);
  caption.setBuddy(&field);
  grid.addWidget(&caption, row, column);
  grid.addWidget(&field, row, column + 1);
  return field;
}

void ConnectionPage::AddServerCard() {
  Card& card = AddCard();
  QGridLayout& grid = AddGrid(card);
  const auto& names = traits_.controls;
  host_ = &AddField(grid, 0, 0, names.host, "&Host name", traits_.host_limit);
  port_ = &AddField(grid, 0, 2, names.port, "P&ort number", kPortLimit);
  user_ = &AddField(grid, 1, 0, names.user, "&Username", kUserLimit);
  password_ = &AddField(grid, 1, 2, names.password, "&Password", kUserLimit);
  password_->setEchoMode(QLineEdit::Password);
  AddPasswordEye(*password_);
  OfferEarlierConnections(*host_, traits_.server, [this](const EarlierConnection& earlier) {
    host_->setText(earlier.host);
    port_->setText(earlier.port);
    if (!earlier.user.isEmpty()) user_->setText(earlier.user);
  });
  grid.setColumnStretch(1, 3);
  grid.setColumnStretch(3, 2);
  int row = 2;
  if (names.windows_login) {
    windows_login_ = &MakeNamed<QCheckBox>(names.windows_login, card,
                                           "Use &windows NT authentication for MS SQL Server");
    windows_login_->setToolTip(
        "Check it if you are using windows authentication for MS SQL server");
    grid.addWidget(windows_login_, row++, 0, 1, 4);
    connect(windows_login_, &QCheckBox::clicked, this, &ConnectionPage::OnWindowsLogin);
  }
  encryption_ = &MakeChild<EncryptionFields>(
      static_cast<QWidget&>(card),
      EncryptionFields::Names{names.encryption, names.ca_file, names.browse_ca_file}, grid, row);
}

void ConnectionPage::AddSourceCard() {
  Card& card = AddCard();
  QGridLayout& grid = AddGrid(card);
  auto& label = MakeChild<QLabel>(card, "&Select source database");
  databases_ = &AddDatabaseList(traits_.controls.databases, card);
  label.setBuddy(databases_);
  grid.addWidget(&label, 0, 0);
  grid.addWidget(databases_, 0, 1);
  grid.setColumnStretch(1, 1);
}

void ConnectionPage::AddDestinationCard() {
  Card& card = AddCard();
  QGridLayout& grid = AddGrid(card);
  const auto& names = traits_.controls;

  auto& kinds = MakeChild<OptionGroup>(static_cast<QObject&>(*this));
  existing_database_ = &AddOption(names.existing_database, card, "&existing database", kinds);
  databases_ = &AddDatabaseList(names.databases, card);
  databases_->setAccessibleName("existing database");
  new_database_ = &AddOption(names.new_database, card, "new d&atabase", kinds);
  new_database_->setChecked(true);
  new_name_ = &MakeNamed<QLineEdit>(names.new_name, card);
  new_name_->setMaxLength(kNameLimit);
  new_name_->setAccessibleName("new database");

  auto& modes = MakeChild<OptionGroup>(static_cast<QObject&>(*this));
  merge_ = &AddOption(names.merge, card, "&Merge", modes);
  merge_->setToolTip("Add tables to the destination database.");
  merge_->setChecked(true);
  overwrite_ = &AddOption(names.overwrite, card, "O&verwrite", modes);
  overwrite_->setToolTip("Overwrite destination database with the converted one.");
  for (QRadioButton* option : {merge_, overwrite_}) option->setEnabled(false);

  grid.addWidget(existing_database_, 0, 0);
  grid.addWidget(databases_, 0, 1, 1, 2);
  grid.addWidget(merge_, 1, 1);
  grid.addWidget(overwrite_, 1, 2);
  grid.addWidget(new_database_, 2, 0);
  grid.addWidget(new_name_, 2, 1, 1, 2);
  grid.setColumnStretch(2, 1);
  // As they stand.
  setTabOrder(databases_, merge_);
  setTabOrder(merge_, overwrite_);
  setTabOrder(overwrite_, new_database_);
  setTabOrder(new_database_, new_name_);

  connect(existing_database_, &QRadioButton::clicked, this, &ConnectionPage::OnExistingDatabase);
  connect(new_database_, &QRadioButton::clicked, this, &ConnectionPage::OnNewDatabase);
  connect(merge_, &QRadioButton::clicked, this,
          [this] { session_.src->SetConvertMode(convert_mode::kMerge); });
  connect(overwrite_, &QRadioButton::clicked, this,
          [this] { session_.src->SetConvertMode(convert_mode::kOverwrite); });
}

void ConnectionPage::AddButtons() {
  const auto& names = traits_.controls;
  connect_ = &theme::AddButton(names.connect, *this,
                               traits_.is_destination ? "Create New" : "Connect", 'C');
  disconnect_ = &theme::AddButton(names.disconnect, *this, "Disconnect", 'D');
  disconnect_->SetEnabled(false);
  auto& row = MakeLayout<QHBoxLayout>(Content());
  row.setSpacing(theme::kGap);
  server_info_ = &MakeChild<WrappedLabel>(static_cast<QWidget&>(*this));
  server_info_->setObjectName("lblServerInfo" + QString::number(traits_.page));
  row.addWidget(server_info_, 1);
  row.addWidget(connect_);
  row.addWidget(disconnect_);
  for (GradientButton* button : {connect_, disconnect_}) theme::Widen(*button, 120);
  connect(connect_, &QAbstractButton::clicked, this, &ConnectionPage::OnConnect);
  connect(disconnect_, &QAbstractButton::clicked, this, &ConnectionPage::OnDisconnect);
}

}  // namespace dorvane
