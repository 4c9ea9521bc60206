#include "platform/ado/mysql/provider.h"

#include "platform/ado/mysql/session.h"

namespace dorvane::ado {

namespace mysql {

std::unique_ptr<Session> ClientProvider::Connect(const ConnectionSettings& settings) {
  return std::make_unique<ClientSession>(settings, bulk_);
}

}  // namespace mysql

Provider& MySqlProvider() {
  static mysql::ClientProvider provider;
  return provider;
}

}  // namespace dorvane::ado
