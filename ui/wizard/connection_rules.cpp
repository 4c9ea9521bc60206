#include "ui/wizard/connection_rules.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "endpoint/events.h"
#include "platform/run_time_error.h"
#include "platform/text/number_text.h"
#include "ui/wizard/wizard_steps.h"

namespace dorvane {

namespace {

using Last = LastSettings;

constexpr const char* kCanNotConnect = "Can not connect to server: {description}";

constexpr std::array<ConnectionPageTraits, 4> kTraits = {{
    {
        .page = page::kMsSqlSource,
        .server = ServerKind::MsSql,
        .is_destination = false,
        .controls = {.host = "txtSrcHost",
                     .user = "txtSrcUsername",
                     .password = "txtSrcPassword",
                     .port = "txtSrcPortnumber",
                     .windows_login = "chkWinAuth",
                     .encryption = "cmbSrcEncryption",
                     .ca_file = "txtSrcCaFile",
                     .browse_ca_file = "cmdSrcCaFile",
                     .databases = "cmbSrcExistingDatabase",
                     .connect = "cmdSrcConnect",
                     .disconnect = "cmdSrcDisconnect"},
        .host_limit = 50,
        .user_check = UserCheck::UnlessWindowsLogin,
        .focus_for_user = "txtSrcUsername",
        .preset = {"mssql", Last::kSrcServer, Last::kSrcUser, Last::kSrcPassword, Last::kSrcPort,
                   "sa", "1433"},
        .failure = {kCanNotConnect, message_style::kError},
        .not_ready = {},
    },
    {
        .page = page::kMySqlDestination,
        .server = ServerKind::MySql,
        .is_destination = true,
        .controls = {.host = "txtDestHost",
                     .user = "txtDestUserName",
                     .password = "txtDestPassword",
                     .port = "txtDestPortNumber",
                     .encryption = "cmbDestEncryption",
                     .ca_file = "txtDestCaFile",
                     .browse_ca_file = "cmdDestCaFile",
                     .databases = "cmbDestExistingDatabase",
                     .connect = "cmdDestConnect",
                     .disconnect = "cmdDestDisconnect",
                     .existing_database = "optExistingDb",
                     .new_database = "optNewDb",
                     .new_name = "txtDestNewDbName",
                     .merge = "opnMerge",
                     .overwrite = "opnOverwite"},
        .host_limit = 40,
        .user_check = UserCheck::Never,
        .focus_for_user = nullptr,
        .preset = {"mssql", Last::kDestServer, Last::kDestUser, Last::kDestPassword,
                   Last::kDestPort, "root", "3306"},
        .failure = {"Error number {number} - Can not connect to the server {description}",
                    message_style::kPlain},
        .not_ready = {"Please click create database button first",
                      "Please enter a valid database name", message_style::kPlain},
    },
    {
        .page = page::kMySqlSource,
        .server = ServerKind::MySql,
        .is_destination = false,
        .controls = {.host = "txtDir2MysqlHost",
                     .user = "txtDir2MysqlUsername",
                     .password = "txtDir2MysqlPassword",
                     .port = "txtDir2MysqlPortNo",
                     .encryption = "cmbDir2MysqlEncryption",
                     .ca_file = "txtDir2MysqlCaFile",
                     .browse_ca_file = "cmdDir2MysqlCaFile",
                     .databases = "cmbDir2MysqlDatabases",
                     .connect = "cmdDir2MysqlConnect",
                     .disconnect = "cmdDir2MysqlDisconnect"},
        .host_limit = 40,
        .user_check = UserCheck::Always,
        .focus_for_user = "txtDir2MysqlUsername",
        .preset = {"mysql", Last::kSrcServer, Last::kSrcUser, Last::kSrcPassword, Last::kSrcPort,
                   "root", "3306"},
        .failure = {kCanNotConnect, message_style::kError},
        .not_ready = {},
    },
    {
        .page = page::kMsSqlDestination,
        .server = ServerKind::MsSql,
        .is_destination = true,
        .controls = {.host = "txtDir2MsSqlHost",
                     .user = "txtDir2MsSqlUsername",
                     .password = "txtDir2MsSqlPassword",
                     .port = "txtDir2MsSqlPortNo",
                     .windows_login = "chkDir2MsSqlAuth",
                     .encryption = "cmbDir2MsSqlEncryption",
                     .ca_file = "txtDir2MsSqlCaFile",
                     .browse_ca_file = "cmdDir2MsSqlCaFile",
                     .databases = "cmbDir2MsSqlExistingDatabase",
                     .connect = "cmdDir2MsSqlConnect",
                     .disconnect = "cmdDir2MsSqlDisconnect",
                     .existing_database = "opnDir2MsSqlExistingDb",
                     .new_database = "opnDir2MsSqlNewDb",
                     .new_name = "txtDir2MsSqlNewDatabase",
                     .merge = "opnDir2MsSqlMerge",
                     .overwrite = "opnDir2MsSqlOverwite"},
        .host_limit = 40,
        .user_check = UserCheck::UnlessWindowsLogin,
        .focus_for_user = "chkDir2MsSqlAuth",
        .preset = {"mysql", Last::kDestServer, Last::kDestUser, Last::kDestPassword,
                   Last::kDestPort, "sa", "1433"},
        .failure = {"Unkown Error number {number} - {description}", message_style::kPlain},
        .not_ready = {"Please click create database button", "Please enter a valid Database Name",
                      message_style::kInformation},
    },
}};

bool IsNumber(std::string_view typed) {
  return !typed.empty() && std::ranges::all_of(typed, text::IsDigit);
}

void FillIfEmpty(std::string& field, const std::string& value) {
  if (field.empty()) field = value;
}

}  // namespace

const ConnectionPageTraits& TraitsOf(std::int16_t page) {
  return *std::ranges::find(kTraits, page, &ConnectionPageTraits::page);
}

void PresetFields(const ConnectionPageTraits& traits, const LastSettings& last,
                  TypedSettings& typed) {
  const auto& preset = traits.preset;
  const bool same_way = last[Last::kDirection] == preset.last_direction;
  FillIfEmpty(typed.settings.server, same_way ? last[preset.host] : "localhost");
  FillIfEmpty(typed.settings.user_id, same_way ? last[preset.user] : preset.default_user);
  FillIfEmpty(typed.port, same_way ? last[preset.port] : preset.default_port);
  if (same_way) FillIfEmpty(typed.settings.password, last.PlainPassword(preset.password));
}

std::optional<FieldRefusal> CheckFields(const ConnectionPageTraits& traits,
                                        const TypedSettings& typed,
                                        const std::optional<std::string>& new_name) {
  if (!IsNumber(text::Trim(typed.port))) {
    return FieldRefusal{FieldRefusal::kPort, "Please enter a valid port number",
                        message_style::kInformation};
  }
  const bool needs_user =
      traits.user_check == UserCheck::Always ||
      (traits.user_check == UserCheck::UnlessWindowsLogin && !typed.settings.integrated_security);
  if (needs_user && text::Trim(typed.settings.user_id).empty()) {
    return FieldRefusal{FieldRefusal::kUser, "Please enter a valid username",
                        message_style::kInformation};
  }
  if (new_name && text::Trim(*new_name).empty()) {
    return FieldRefusal{FieldRefusal::kNewName, "Please Enter the New Database Name",
                        message_style::kPlain};
  }
  return std::nullopt;
}

void ApplyFields(const TypedSettings& typed, IDatabase& endpoint) {
  ado::ConnectionSettings settings = typed.settings;
  settings.port = text::ParsePort(typed.port);
  settings.database = endpoint.DbName();
  settings.idle_limit = endpoint.Settings().idle_limit;  // of a settings file, perhaps
  endpoint.SetSettings(std::move(settings));
}

std::string FailureText(const ConnectionPageTraits& traits, std::int32_t number,
                        std::string_view description) {
  return fmt::format(fmt::runtime(traits.failure.format), fmt::arg("number", number),
                     fmt::arg("description", description));
}

}  // namespace dorvane
