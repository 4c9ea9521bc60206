#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <string>
#include <string_view>

#include "platform/ado/connection.h"
#include "platform/ado/provider.h"
#include "platform/text/number_text.h"

namespace dorvane::ado {

namespace {

using text::EqualsIgnoringCase;

/// Calls `visit` with the key and the value of every part of a connection string.
template <typename Visit>
void ForEachPart(std::string_view text, Visit visit) {
  while (!text.empty()) {
    const std::string_view part = text.substr(0, text.find(';'));
    text.remove_prefix(std::min(text.size(), part.size() + 1));
    const auto equals = part.find('=');
    if (equals == std::string_view::npos) continue;
    visit(text::Trim(part.substr(0, equals)), part.substr(equals + 1));
  }
}

struct SettingKey {
  std::string_view name;
  void (*set)(ConnectionSettings&, std::string_view);
};

void SetServer(ConnectionSettings& settings, std::string_view value) {
  settings.server = value;
}
void SetUserId(ConnectionSettings& settings, std::string_view value) {
  settings.user_id = value;
}
void SetPassword(ConnectionSettings& settings, std::string_view value) {
  settings.password = value;
}
void SetDatabase(ConnectionSettings& settings, std::string_view value) {
  settings.database = value;
}
void SetPort(ConnectionSettings& settings, std::string_view value) {
  std::from_chars(value.data(), value.data() + value.size(), settings.port);
}
void SetIntegratedSecurity(ConnectionSettings& settings, std::string_view value) {
  settings.integrated_security = EqualsIgnoringCase(value, "SSPI") ||
                                 EqualsIgnoringCase(value, "yes") ||
                                 EqualsIgnoringCase(value, "true");
}

constexpr std::array kSettingKeys = {
    SettingKey{"Server", SetServer},
    SettingKey{"Data Source", SetServer},
    SettingKey{"port", SetPort},
    SettingKey{"User ID", SetUserId},
    SettingKey{"UID", SetUserId},
    SettingKey{"Password", SetPassword},
    SettingKey{"PWD", SetPassword},
    SettingKey{"Database", SetDatabase},
    SettingKey{"Initial Catalog", SetDatabase},
    SettingKey{"Integrated Security", SetIntegratedSecurity},
    SettingKey{"Trusted_Connection", SetIntegratedSecurity},
};

struct ProviderName {
  std::string_view key;
  std::string_view value;
  Provider& (*provider)();
};

constexpr std::array kProviderNames = {
    ProviderName{"Provider", "SQLOLEDB", OdbcProvider},
    ProviderName{"Provider", "SQLOLEDB.1", OdbcProvider},
    ProviderName{"Driver", "{MySql ODBC 3.51 Driver}", MySqlProvider},
};

}  // namespace

ConnectionSettings ParseConnectionString(std::string_view text) {
  ConnectionSettings settings;
  ForEachPart(text, [&](std::string_view name, std::string_view value) {
    const auto key = std::ranges::find_if(kSettingKeys, [&](const SettingKey& candidate) {
      return EqualsIgnoringCase(candidate.name, name);
    });
    if (key != kSettingKeys.end()) key->set(settings, value);
  });
  return settings;
}

Provider& InstalledProvider(std::string_view connection_string) {
  // The first part that names one decides: a later one may be the rest of a password.
  Provider* found = nullptr;
  ForEachPart(connection_string, [&](std::string_view key, std::string_view value) {
    for (const ProviderName& name : kProviderNames) {
      const bool named =
          EqualsIgnoringCase(name.key, key) && EqualsIgnoringCase(name.value, text::Trim(value));
      if (named && found == nullptr) found = &name.provider();
    }
  });
  if (found == nullptr) {
    throw RunTimeError(kProviderNotFound, "ADODB.Connection",
                       "Provider cannot be found. It may not be properly installed.");
  }
  return *found;
}

}  // namespace dorvane::ado
