#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/ado/odbc/handle.h"

namespace dorvane::ado::odbc {

/// A fresh ODBC 3 environment. The first call takes the variables by which a user's FreeTDS set-up
/// would override the connection string (TDSVER, TDSHOST, TDSPORT and their kin) out of this
/// process's environment. Throws ProviderError.
Environment NewEnvironment();

enum class DriverKind { Microsoft, FreeTds };

struct Driver {
  DriverKind kind = DriverKind::FreeTds;
  std::string name;  // as registered, or the path of the driver's library
};

/// The preferred one of the registered drivers, or else of the driver libraries found. Throws
/// ProviderError kProviderNotFound, naming the package to install, when there is none.
Driver ChooseDriver(const std::vector<std::string>& registered,
                    const std::vector<std::filesystem::path>& libraries);

/// The preferred one of the drivers on this machine; looked for on every call, so that a driver
/// installed meanwhile is found.
Driver InstalledDriver();

}  // namespace dorvane::ado::odbc
