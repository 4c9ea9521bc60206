#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "endpoint/database.h"
#include "job/last_settings.h"

namespace dorvane {

/// A connection page's settings as typed: the port may be any text.
struct TypedSettings {
  ado::ConnectionSettings settings = {};  // without port and database
  std::string port = {};
};

enum class UserCheck { Never, Always, UnlessWindowsLogin };

/// What the four connection pages differ in. Names are those of the controls; null where the page
/// has no such control.
struct ConnectionPageTraits {
  std::int16_t page;
  ServerKind server;
  bool is_destination;

  struct Controls {
    const char* host;
    const char* user;
    const char* password;
    const char* port;
    const char* windows_login = nullptr;
    const char* encryption;
    const char* ca_file;
    const char* browse_ca_file;
    const char* databases;
    const char* connect;
    const char* disconnect;
    const char* existing_database = nullptr;
    const char* new_database = nullptr;
    const char* new_name = nullptr;
    const char* merge = nullptr;
    const char* overwrite = nullptr;
  } controls;
  int host_limit;  // characters

  UserCheck user_check;
  /// The control that takes the focus after a failed user check.
  const char* focus_for_user;

  struct Preset {
    std::string_view last_direction;  // of runs whose values serve this page
    LastSettings::Element host, user, password, port;
    const char* default_user;
    const char* default_port;
  } preset;

  struct Failure {
    const char* format;  // with {number} and {description}
    std::int32_t style;
  } failure;

  /// What the table page says of a destination page that is not ready.
  struct NotReady {
    const char* create_first;
    const char* name_first;
    std::int32_t style;
  } not_ready;
};

/// `page` is one of the four connection pages.
const ConnectionPageTraits& TraitsOf(std::int16_t page);

/// Fills the empty fields: from the last run's values when it went the same way, else from fixed
/// defaults. A field that holds any text, even blanks, is left alone.
void PresetFields(const ConnectionPageTraits& traits, const LastSettings& last,
                  TypedSettings& typed);

/// A field that keeps a page from connecting, and what to tell.
struct FieldRefusal {
  enum Field { kPort, kUser, kNewName } field;
  const char* message;
  std::int32_t style;
};

/// What is wrong with the typed settings, if anything. `new_name` is the name of the database to
/// be created; none where an existing one is used.
std::optional<FieldRefusal> CheckFields(const ConnectionPageTraits& traits,
                                        const TypedSettings& typed,
                                        const std::optional<std::string>& new_name);

/// Copies the settings into an endpoint, whose database stays. Throws RunTimeError kOverflow when
/// the port does not fit in 16 bits.
void ApplyFields(const TypedSettings& typed, IDatabase& endpoint);

/// The page's text for a failure that the endpoint did not report itself.
std::string FailureText(const ConnectionPageTraits& traits, std::int32_t number,
                        std::string_view description);

}  // namespace dorvane
