#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/ado/connection.h"
#include "platform/ado/mysql/catalog.h"
#include "platform/ado/mysql/column_buffer.h"
#include "platform/ado/mysql/errors.h"
#include "platform/ado/mysql/session_settings.h"
#include "platform/ado/mysql/types.h"
#include "tests/support/table.h"

namespace dorvane::ado::mysql {

namespace {

TEST(SqlMode, KeepsTheServersModesButThoseThatChangeMeanings) {
  EXPECT_EQ(SessionSqlMode(""), "NO_AUTO_VALUE_ON_ZERO,STRICT_TRANS_TABLES");
  EXPECT_EQ(SessionSqlMode("STRICT_TRANS_TABLES,NO_ZERO_DATE,NO_AUTO_VALUE_ON_ZERO"),
            "NO_ZERO_DATE,NO_AUTO_VALUE_ON_ZERO,STRICT_TRANS_TABLES");
  // A set of modes would bring back what was taken out of it.
  EXPECT_EQ(SessionSqlMode("REAL_AS_FLOAT,PIPES_AS_CONCAT,ANSI_QUOTES,IGNORE_SPACE,ANSI"),
            "REAL_AS_FLOAT,PIPES_AS_CONCAT,IGNORE_SPACE,NO_AUTO_VALUE_ON_ZERO,STRICT_TRANS_TABLES");
}

TEST(Defaults, AreReportedAsTheirValues) {
  for (const auto& cells : test::ReadTable("platform/ado/mysql/defaults.txt")) {
    const bool as_expression = cells.at(0) == "expression";
    EXPECT_EQ(DefaultValue(cells.at(1), cells.at(2), cells.at(3), as_expression).value_or("none"),
              cells.at(4))
        << cells[1];
  }
  EXPECT_EQ(DefaultValue("'it''s \\\\ \\n\\r\\t\\Z\\0'", "varchar", "", true),
            std::string("it's \\ \n\r\t\x1a\0", 12));
}

TEST(Errors, AreClassifiedAlikeOnEveryServer) {
  // The same failures bear other SQLSTATEs elsewhere.
  EXPECT_EQ(HresultOf(1366, "HY000"), hresult::kErrorsOccurred);
  EXPECT_EQ(HresultOf(1366, "22007"), hresult::kErrorsOccurred);
  EXPECT_EQ(HresultOf(1265, "01000"), hresult::kErrorsOccurred);
  EXPECT_EQ(HresultOf(1062, "23000"), hresult::kErrorsInCommand);
  EXPECT_EQ(HresultOf(3819, "HY000"), hresult::kErrorsInCommand);
  EXPECT_EQ(HresultOf(1205, "HY000"), hresult::kTimeout);
  EXPECT_EQ(HresultOf(1205, "40001"), hresult::kTimeout);
  EXPECT_EQ(HresultOf(1213, "40001"), hresult::kFail);
  EXPECT_EQ(HresultOf(2013, "HY000"), hresult::kFail);
  EXPECT_EQ(HresultOf(0, ""), hresult::kFail);
}

TEST(Dates, OutsideTheServersRangesAreGarbled) {
  using enum DataType;
  constexpr auto kKind = MYSQL_TIMESTAMP_DATETIME;
  EXPECT_EQ(ToDateTime({9999, 12, 31, 23, 59, 59, 999'999, 0, kKind}, DBTimeStamp),
            (DateTime{9999, 12, 31, 86'399, 999'999'000}));
  EXPECT_EQ(ToDateTime({0, 0, 34, 22, 59, 59, 999'999, 1, kKind}, DBTime),
            (DateTime{1899, 12, 30, -3'020'399, -999'999'000}));
  const std::pair<MYSQL_TIME, DataType> garbled[] = {
      {{10'000, 1, 1, 0, 0, 0, 0, 0, kKind}, DBDate},
      {{2024, 13, 1, 0, 0, 0, 0, 0, kKind}, DBDate},
      {{2024, 1, 32, 0, 0, 0, 0, 0, kKind}, DBDate},
      {{2024, 1, 1, 24, 0, 0, 0, 0, kKind}, DBTimeStamp},
      {{2024, 1, 1, 0, 60, 0, 0, 0, kKind}, DBTimeStamp},
      {{2024, 1, 1, 0, 0, 60, 0, 0, kKind}, DBTimeStamp},
      {{2024, 1, 1, 0, 0, 0, 4'294'967'295, 0, kKind}, DBTimeStamp},
      {{2024, 1, 1, 0, 0, 1, 0, 1, kKind}, DBTimeStamp},
      {{0, 0, 34, 23, 0, 0, 0, 0, kKind}, DBTime},
      {{0, 0, 4'294'967'295, 0, 0, 0, 0, 0, kKind}, DBTime},
      {{0, 0, 0, 0, 0, 0, 1'000'000, 1, kKind}, DBTime},
  };
  for (const auto& [time, type] : garbled) EXPECT_THROW(ToDateTime(time, type), ProviderError);
}

TEST(Types, JsonAndUnknownTypesOfOtherServers) {
  EXPECT_EQ(Translate("j", {.type = "json"}, false).type, DataType::LongVarWChar);
  EXPECT_EQ(Translate("v", {.type = "vector"}, false).type, DataType::LongVarBinary);
  EXPECT_EQ(Translate("x", {.type = "xml", .is_unicode = true}, true).type, DataType::LongVarWChar);
}

}  // namespace
}  // namespace dorvane::ado::mysql
