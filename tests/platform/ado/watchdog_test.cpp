#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "platform/ado/connection.h"
#include "tests/support/proxy.h"
#include "tests/support/servers.h"

namespace dorvane::ado {

namespace {

using test::Fault;
using testing::HasSubstr;

/// Either kind of server, its sessions reached through a proxy and given a second of silence.
class Watched : public testing::TestWithParam<ServerKind> {
 protected:
  static bool IsMySql() { return GetParam() == ServerKind::MySql; }

  static const test::PrivateMySql& MySql() {
    static const test::PrivateMySql my_sql;
    return my_sql;
  }

  static int ServerPort() {
    static const test::SandboxServer ms_sql({"shop"});
    return IsMySql() ? MySql().Port() : ms_sql.Port();
  }

  void SetUp() override { Open(); }

  void Open() {
    connection_.Close();
    connection_.Open({.server = "127.0.0.1",
                      .port = proxy_.Port(),
                      .user_id = IsMySql() ? "root" : "sa",
                      .password = "secret",
                      .database = IsMySql() ? "mysql" : "shop",
                      .idle_limit = 1});
  }

  /// How the statement ends, its rows read: in the words of its failure, or not at all.
  std::string Outcome(const std::string& sql) {
    try {
      Recordset rows = connection_.Execute(sql);
      RowBlock block;
      while (rows.GetRows(block)) {
      }
      return "";
    } catch (const RunTimeError& error) {
      return error.Description();
    }
  }

  /// Some megabytes, more than the buffers between server and client take.
  static std::string ManyRows() {
    constexpr std::string_view kDigits = "(select 0 d union all select 1 union all select 2 d)";
    std::string sql =
        fmt::format("select {}('x', 4000) from {} t0", IsMySql() ? "repeat" : "replicate", kDigits);
    for (int i = 1; i < 8; ++i) sql += fmt::format(" cross join {} t{}", kDigits, i);
    return sql;
  }

  test::Proxy proxy_{ServerPort(), GetParam()};
  Connection connection_{InstalledProvider(GetParam())};
};

TEST_P(Watched, ALongStatementMayTakeItsTime) {
  EXPECT_EQ(Outcome(IsMySql() ? "select sleep(3)" : "waitfor delay '00:00:03' select 1"), "");
}

TEST_P(Watched, ASessionOfWhichTheServerKnowsNothingEnds) {
  for (const Fault fault : {Fault::Swallow, Fault::SwallowAnswers}) {
    Open();
    proxy_.Arm({.fault = fault});
    EXPECT_THAT(Outcome("select 1"), HasSubstr("No answer for 1 seconds. "));
    EXPECT_TRUE(proxy_.HasStruck());
  }
}

TEST_P(Watched, AResultThatNoLongerArrivesEnds) {
  proxy_.Arm({.fault = Fault::Stall, .on_answers = true, .after = 100'000});
  EXPECT_THAT(Outcome(ManyRows()), HasSubstr("No answer for 1 seconds. "));
}

TEST_P(Watched, AWrongLengthEndsLikeALostConnection) {
  if (IsMySql() && !MySql().IsMariaDb()) GTEST_SKIP() << "its packets are encrypted";
  proxy_.Arm({.fault = Fault::Corrupt, .on_answers = true});
  EXPECT_NE(Outcome("select 1"), "");
}

INSTANTIATE_TEST_SUITE_P(, Watched, testing::Values(ServerKind::MySql, ServerKind::MsSql),
                         [](const auto& kind) {
                           return kind.param == ServerKind::MySql ? "MySql" : "MsSql";
                         });

}  // namespace
}  // namespace dorvane::ado
