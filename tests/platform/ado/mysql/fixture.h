#pragma once

#include "platform/ado/mysql/session.h"
#include "tests/platform/ado/server_test.h"

namespace dorvane::ado {

class MySqlTest : public ServerTest {
 protected:
  MySqlTest() : ServerTest(ServerKind::MySql) {}

  static bool IsMariaDb() { return MySql().IsMariaDb(); }
};

}  // namespace dorvane::ado
