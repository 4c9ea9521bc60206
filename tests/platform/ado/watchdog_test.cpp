// Servers of both kinds that fall silent.
#include "tests/platform/ado/server_test.h"
#include "tests/support/proxy.h"

namespace dorvane::ado {

namespace {

using test::Fault;
using testing::HasSubstr;

/// Sessions that are reached through a proxy and given a second of silence.
class Watched : public BothServers {
 protected:
  Watched() { Open(); }

  void Open() {
    connection_.Close();
    settings_.port = proxy_.Port();
    settings_.idle_limit = 1;
    connection_.Open(settings_);
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
  std::string ManyRows() const {
    constexpr std::string_view kDigits = "(select 0 d union all select 1 union all select 2 d)";
    std::string sql =
        fmt::format("select {}('x', 4000) from {} t0", IsMySql() ? "repeat" : "replicate", kDigits);
    for (int i = 1; i < 8; ++i) sql += fmt::format(" cross join {} t{}", kDigits, i);
    return sql;
  }

  test::Proxy proxy_{settings_.port, GetParam()};
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

INSTANTIATE_TEST_SUITE_P(, Watched, kBothServers, NameOfKind);

}  // namespace
}  // namespace dorvane::ado
