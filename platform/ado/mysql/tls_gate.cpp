#include "platform/ado/mysql/tls_gate.h"

#include <mariadb/errmsg.h>
#include <mariadb/mysql/plugin_auth.h>

#include <mutex>

#include "platform/ado/mysql/client.h"

namespace dorvane::ado::mysql {

namespace {

constexpr const char* kName = "tls_gate";

int PassGate(MYSQL_PLUGIN_VIO* connection, MYSQL* client) {
  if (!OffersTls(client)) return CR_SSL_CONNECTION_ERROR;
  // The first packet of a logon waits for TLS.
  if (connection->write_packet(connection, nullptr, 0) != 0) return CR_ERROR;
  if (mysql_get_ssl_cipher(client) == nullptr) return CR_SSL_CONNECTION_ERROR;
  mysql_options(client, MARIADB_OPT_RESTRICTED_AUTH, kSafeMethods);
  return CR_OK;
}

/// The library's record of an authentication method; the header that has it cannot be used, since
/// one that it includes is not installed.
struct Method {
  MYSQL_CLIENT_PLUGIN_HEADER
  int (*authenticate_user)(MYSQL_PLUGIN_VIO* connection, MYSQL* client);
};
constexpr int kMethodType = 2;
constexpr unsigned kMethodVersion = 0x0100;

void Register(MYSQL* client) {
  static Method gate = {kMethodType, kMethodVersion, kName,   "",      "",      {1, 0, 0},
                        "",          nullptr,        nullptr, nullptr, nullptr, PassGate};
  static std::once_flag done;
  std::call_once(done, [client] {
    mysql_client_register_plugin(client, reinterpret_cast<st_mysql_client_plugin*>(&gate));
  });
}

}  // namespace

void DemandTls(MYSQL* client) {
  Register(client);
  // Nothing but the gate at first: a server that knows no methods would be given a hash at once.
  mysql_options(client, MARIADB_OPT_RESTRICTED_AUTH, kName);
  mysql_options(client, MYSQL_DEFAULT_AUTH, kName);
}

bool OffersTls(MYSQL* client) {
  return (Capabilities(client) & CLIENT_SSL) != 0;
}

}  // namespace dorvane::ado::mysql
