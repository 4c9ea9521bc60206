#pragma once

#include "platform/ado/value_text.h"
#include "tests/platform/ado/server_test.h"

namespace dorvane::ado {

/// The practice server, with a session of the provider's besides the connection.
class MsSqlTest : public ServerTest {
 protected:
  MsSqlTest() : ServerTest(ServerKind::MsSql) {}

  std::unique_ptr<Session> session_ = OdbcProvider().Connect(settings_);
};

}  // namespace dorvane::ado
