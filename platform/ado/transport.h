#pragma once

#include <string>

#include "platform/ado/connection_settings.h"

namespace dorvane::ado {

/// Whether the host is this machine, so that what travels to it is on no network. `host` is a name
/// or an address; one that cannot be found is not this machine.
bool IsLoopback(const std::string& host);

/// The PEM file of the authorities that Encryption::Verified trusts: the settings' own or the
/// system's. Throws RunTimeError 53, 76, 70 or 57 when it cannot be read.
std::string AuthoritiesFile(const ConnectionSettings& settings);

}  // namespace dorvane::ado
