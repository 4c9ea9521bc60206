#pragma once

#include <string>
#include <string_view>

#include "platform/ado/odbc/connection_string.h"
#include "platform/files/descriptor.h"

namespace dorvane::ado::odbc {

/// The name that its only server has in a FreeTdsConfiguration.
inline constexpr std::string_view kConfiguredServer = "verified";

/// While it lives, FreeTDS finds a server in its configuration whose certificate and host name it
/// verifies: a connection string cannot ask for that. Nothing of it is on disk. At most one at a
/// time.
class FreeTdsConfiguration {
 public:
  /// `authorities` is a PEM file. Throws RunTimeError when it cannot be read.
  FreeTdsConfiguration(const ServerAddress& address, const std::string& authorities);

  /// Points FreeTDS to these configurations instead of the user's own. Changes this process's
  /// environment, so it is for its beginning.
  static void Announce();

 private:
  files::Descriptor authorities_;
};

}  // namespace dorvane::ado::odbc
