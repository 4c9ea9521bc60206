#include "platform/ado/odbc/default_expression.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace dorvane::ado::odbc {

namespace {

struct Case {
  std::string expression;
  std::optional<std::string> value;
};

class DefaultExpression : public testing::TestWithParam<Case> {};

TEST_P(DefaultExpression, IsReportedAsItsValue) {
  EXPECT_EQ(DefaultValue(GetParam().expression), GetParam().value) << GetParam().expression;
}

INSTANTIATE_TEST_SUITE_P(Numbers, DefaultExpression,
                         testing::Values(Case{"((0))", "0"}, Case{"(42)", "42"}, Case{"7", "7"},
                                         Case{"((-1.5))", "-1.5"}, Case{"(-(1))", "-1"},
                                         Case{"( ( +3 ) )", "3"}, Case{"(-(-(2)))", "2"},
                                         Case{"((2147483648.))", "2147483648"},
                                         Case{"((.5))", "0.5"}, Case{"((-.5))", "-0.5"},
                                         Case{"((1.5e+010))", "1.5e+010"}, Case{"((1E5))", "1e5"},
                                         Case{"(($12.50))", "12.50"}, Case{"((-$0.01))", "-0.01"},
                                         Case{"(0x0A)", "0x0A"}, Case{"(0x)", "0x"}));

INSTANTIATE_TEST_SUITE_P(
    Texts, DefaultExpression,
    testing::Values(Case{"('abc')", "abc"}, Case{"(N'abc')", "abc"}, Case{"(n'x')", "x"},
                    Case{"('O''Brien')", "O'Brien"}, Case{"('')", ""}, Case{"('''')", "'"},
                    Case{"('(a)')", "(a)"}, Case{"(('a) or (b'))", "a) or (b"},
                    Case{"('it''s ('')')", "it's (')"}, Case{"(N'漢字 😀')", "漢字 😀"},
                    Case{"('1900-01-01')", "1900-01-01"}, Case{"(' padded ')", " padded "},
                    Case{"('getdate()')", "getdate()"}));

INSTANTIATE_TEST_SUITE_P(
    CurrentTime, DefaultExpression,
    testing::Values(Case{"(getdate())", "getdate()"}, Case{"(GetDate ( ))", "getdate()"},
                    Case{"CURRENT_TIMESTAMP", "getdate()"}, Case{"(sysdatetime())", "getdate()"},
                    // Other values than the local current time.
                    Case{"(getutcdate())", std::nullopt}, Case{"(sysutcdatetime())", std::nullopt},
                    Case{"(sysdatetimeoffset())", std::nullopt},
                    Case{"(getdate()+(1))", std::nullopt},
                    Case{"(dateadd(day,(1),getdate()))", std::nullopt}));

INSTANTIATE_TEST_SUITE_P(
    OtherExpressions, DefaultExpression,
    testing::Values(Case{"(newid())", std::nullopt}, Case{"(NULL)", std::nullopt},
                    Case{"((1)+(2))", std::nullopt}, Case{"(1)+(2)", std::nullopt},
                    Case{"((1)-(2))", std::nullopt}, Case{"('a'+'b')", std::nullopt},
                    Case{"('a' 'b')", std::nullopt}, Case{"(CONVERT([int],'5'))", std::nullopt},
                    Case{"(CONVERT([datetime],'2020-01-01'))", std::nullopt},
                    Case{"(user_name())", std::nullopt}, Case{"(N)", std::nullopt},
                    Case{"(1e)", std::nullopt}, Case{"(-)", std::nullopt},
                    Case{"(.)", std::nullopt}, Case{"(0xZZ)", std::nullopt}, Case{"", std::nullopt},
                    Case{"()", std::nullopt}, Case{"('open", std::nullopt},
                    Case{"((1)", std::nullopt}, Case{"(1))", std::nullopt},
                    Case{"create default d as 5", std::nullopt}));

}  // namespace
}  // namespace dorvane::ado::odbc
