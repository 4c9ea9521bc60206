#include "platform/ado/mysql/logon.h"

#include <mariadb/errmsg.h>

#include "platform/ado/mysql/errors.h"
#include "platform/ado/mysql/served_text.h"
#include "platform/ado/mysql/session_state.h"
#include "platform/ado/mysql/tls_gate.h"
#include "platform/ado/transport.h"

namespace dorvane::ado::mysql {

namespace {

constexpr unsigned kConnectTimeout = 15;         // seconds
constexpr unsigned kUnreachable = 2003;          // what callers know an absent server by
constexpr unsigned long kFirstQuoting = 100207;  // MariaDB 10.2.7

// Of kSafeMethods those that are safe before the server's offer is known.
constexpr const char* kFirstMethods = "mysql_native_password,client_ed25519,sha256_password";

constexpr const char* kNoTls =
    "The server offers no encrypted connection, and the settings allow no other.";

[[noreturn]] void ThrowLogonError(MYSQL* client, Encryption encryption) {
  unsigned native_error = mysql_errno(client);
  if (native_error == CR_CONNECTION_ERROR || native_error == CR_UNKNOWN_HOST) {
    native_error = kUnreachable;
  }
  std::string description = mysql_error(client);
  const bool was_refused =
      native_error == CR_SSL_CONNECTION_ERROR || native_error == CR_PLUGIN_NOT_ALLOWED;
  if (was_refused && encryption != Encryption::Offered && !OffersTls(client)) {
    native_error = CR_SSL_CONNECTION_ERROR;
    description = kNoTls;
  } else if (native_error == CR_PLUGIN_NOT_ALLOWED) {
    // The library's own words name another method than the one that was refused.
    description = "The server asks for an authentication method that is not supported.";
  }
  throw ProviderError(hresult::kFail, kSource, description,
                      {{.number = hresult::kFail,
                        .native_error = static_cast<std::int32_t>(native_error),
                        .description = description,
                        .sql_state = mysql_sqlstate(client)}});
}

enum class Tls { WhereOffered, Never };

Client NewClient(const ConnectionSettings& settings, Tls tls, const char* methods) {
  Client client(mysql_init(nullptr));
  if (client == nullptr) throw std::bad_alloc();
  MYSQL* handle = client.get();
  const my_bool no = 0;
  mysql_options(handle, MYSQL_OPT_CONNECT_TIMEOUT, &kConnectTimeout);
  mysql_options(handle, MYSQL_SET_CHARSET_NAME, "utf8mb4");
  mysql_options(handle, MARIADB_OPT_RESTRICTED_AUTH, methods);
  const unsigned with_handler = 1;
  mysql_options(handle, MYSQL_OPT_LOCAL_INFILE, &with_handler);
  RefuseFiles(handle);
  mysql_options(handle, MYSQL_OPT_SSL_VERIFY_SERVER_CERT, &no);
  if (tls == Tls::WhereOffered) {
    const my_bool yes = 1;
    mysql_options(handle, MYSQL_OPT_SSL_ENFORCE, &yes);
  }
  if (settings.port != 0) {
    // Else "localhost" would mean the socket file, whatever the port.
    const unsigned tcp = MYSQL_PROTOCOL_TCP;
    mysql_options(handle, MYSQL_OPT_PROTOCOL, &tcp);
  }
  return client;
}

bool Connect(MYSQL* client, const ConnectionSettings& settings) {
  const char* database = settings.database.empty() ? nullptr : settings.database.c_str();
  return mysql_real_connect(client, settings.server.c_str(), settings.user_id.c_str(),
                            settings.password.c_str(), database,
                            static_cast<unsigned>(settings.port), nullptr, 0) != nullptr;
}

/// With TLS where the server offers it, else without.
Client ConnectAsOffered(const ConnectionSettings& settings) {
  Client client;
  const auto succeeds = [&](Tls tls, const char* methods) {
    client = NewClient(settings, tls, methods);
    return Connect(client.get(), settings);
  };
  const auto failed_with = [&](unsigned number) { return mysql_errno(client.get()) == number; };

  if (succeeds(Tls::WhereOffered, kFirstMethods)) return client;
  if (failed_with(CR_PLUGIN_NOT_ALLOWED)) {
    const Tls tls = OffersTls(client.get()) ? Tls::WhereOffered : Tls::Never;
    if (succeeds(tls, kSafeMethods)) return client;
  }
  // Old servers offer versions of TLS that the library no longer speaks.
  if (failed_with(CR_SSL_CONNECTION_ERROR) && succeeds(Tls::Never, kSafeMethods)) return client;
  ThrowLogonError(client.get(), settings.encryption);
}

Client ConnectEncrypted(const ConnectionSettings& settings) {
  Client client = NewClient(settings, Tls::WhereOffered, kSafeMethods);
  DemandTls(client.get());
  // TLS is for TCP: the socket file is not encrypted.
  const unsigned tcp = MYSQL_PROTOCOL_TCP;
  mysql_options(client.get(), MYSQL_OPT_PROTOCOL, &tcp);
  if (settings.encryption == Encryption::Verified) {
    const my_bool yes = 1;
    mysql_options(client.get(), MYSQL_OPT_SSL_VERIFY_SERVER_CERT, &yes);
    // The library looks at the host's name only where it was given a file.
    mysql_options(client.get(), MYSQL_OPT_SSL_CA, AuthoritiesFile(settings).c_str());
  }
  if (!Connect(client.get(), settings)) ThrowLogonError(client.get(), settings.encryption);
  return client;
}

bool TakesBulk(MYSQL* client) {
  unsigned long extended = 0;
  mariadb_get_infov(client, MARIADB_CONNECTION_EXTENDED_SERVER_CAPABILITIES, &extended);
  const bool is_mariadb = (Capabilities(client) & CLIENT_MYSQL) == 0;
  return is_mariadb && (extended & (MARIADB_CLIENT_STMT_BULK_OPERATIONS >> 32)) != 0;
}

bool QuotesDefaults(MYSQL* client) {
  return mariadb_connection(client) && mysql_get_server_version(client) >= kFirstQuoting;
}

}  // namespace

Client Connect(const ConnectionSettings& settings) {
  return settings.encryption == Encryption::Offered ? ConnectAsOffered(settings)
                                                    : ConnectEncrypted(settings);
}

ServerLink LogOn(const ConnectionSettings& settings) {
  ServerLink link;
  link.client = Connect(settings);
  MYSQL* client = link.client.get();
  link.watchdog = std::make_unique<Watchdog>(mysql_get_socket(client));
  link.limits = link.watchdog->Watch([&] { return SetUpSession(client); });
  link.is_exposed = mysql_get_ssl_cipher(client) == nullptr && !IsLoopback(settings.server);
  link.takes_bulk = TakesBulk(client);
  link.quotes_defaults = QuotesDefaults(client);
  link.watchdog->SetLimit(
      std::chrono::seconds(settings.idle_limit),
      [settings, id = mysql_thread_id(client)] { return AskForSession(settings, id); });
  return link;
}

}  // namespace dorvane::ado::mysql
