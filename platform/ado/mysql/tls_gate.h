#pragma once

#include <mariadb/mysql.h>

namespace dorvane::ado::mysql {

/// The authentication methods that hand no bare password to whoever asks, as others do. One of them
/// takes the wish for TLS for TLS and would send it bare to a server without, so these are for
/// clients that wish for TLS if and only if their server offers it.
inline constexpr const char* kSafeMethods =
    "mysql_native_password,client_ed25519,sha256_password,caching_sha2_password";

/// Makes a client that is about to connect send nothing of the password before TLS stands: where a
/// server does not offer it, the library goes on without, whatever its options say. The logon then
/// begins with a method of the program's own that sends an empty answer, and the server asks for
/// one of kSafeMethods. Connecting fails where the server offers no TLS.
void DemandTls(MYSQL* client);

/// Whether the server that this client last talked to offers TLS.
bool OffersTls(MYSQL* client);

}  // namespace dorvane::ado::mysql
