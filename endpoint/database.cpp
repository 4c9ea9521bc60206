#include "endpoint/database.h"

#include <utility>

#include "platform/run_time_error.h"

namespace dorvane {

namespace {

/// Changes one of the endpoint's connection settings.
template <typename Member, typename Value>
void Change(IDatabase& endpoint, Member ado::ConnectionSettings::*member, Value value) {
  ado::ConnectionSettings settings = endpoint.Settings();
  settings.*member = std::move(value);
  endpoint.SetSettings(std::move(settings));
}

/// Changes one of the endpoint's conversion options.
template <typename Value>
void Change(IDatabase& endpoint, Value ConversionOptions::*member, Value value) {
  ConversionOptions options = endpoint.Options();
  options.*member = value;
  endpoint.SetOptions(options);
}

void CheckHasWindowsLogon(const IDatabase& endpoint) {
  if (endpoint.Kind() == ServerKind::MsSql) return;
  throw RunTimeError(run_time::kInvalidPropertyAccess, "MySql", "Invalid Property Access");
}

}  // namespace

bool IDatabase::WinNTAuthentication() const {
  CheckHasWindowsLogon(*this);
  return Settings().integrated_security;
}

void IDatabase::SetWinNTAuthentication(bool value) {
  CheckHasWindowsLogon(*this);
  Change(*this, &ado::ConnectionSettings::integrated_security, value);
}

void IDatabase::SetUserId(std::string value) {
  Change(*this, &ado::ConnectionSettings::user_id, std::move(value));
}

void IDatabase::SetPassword(std::string value) {
  Change(*this, &ado::ConnectionSettings::password, std::move(value));
}

void IDatabase::SetPortNo(std::int32_t value) {
  Change(*this, &ado::ConnectionSettings::port, value);
}

void IDatabase::SetDbName(std::string value) {
  Change(*this, &ado::ConnectionSettings::database, std::move(value));
}

void IDatabase::SetServer(std::string value) {
  Change(*this, &ado::ConnectionSettings::server, std::move(value));
}

void IDatabase::SetCopyTableContent(bool value) {
  Change(*this, &ConversionOptions::copy_table_content, value);
}

void IDatabase::SetConvertMode(std::int16_t value) {
  Change(*this, &ConversionOptions::convert_mode, value);
}

void IDatabase::SetReplaceSpaceWithUnderscore(bool value) {
  Change(*this, &ConversionOptions::replace_space_with_underscore, value);
}

void IDatabase::SetConvertRelationships(bool value) {
  Change(*this, &ConversionOptions::convert_relationships, value);
}

}  // namespace dorvane
