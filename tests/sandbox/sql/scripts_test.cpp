// Runs the scripts of this folder.
#include <algorithm>

#include "tests/sandbox/sql/batch.h"
#include "tests/sandbox/sql/script.h"

namespace sandbox::testing {

namespace {

std::vector<std::string> Shown(const Answer& answer) {
  std::vector<std::string> lines;
  for (const Result& result : answer.results) {
    lines.push_back("----");
    for (const auto& row : result.rows) lines.push_back(ShownRow(RowText(row)));
  }
  return lines;
}

/// The expected lines, "<any>" in them with what the answer has there.
std::vector<std::string> Filled(std::vector<std::string> expected,
                                const std::vector<std::string>& shown) {
  constexpr std::string_view kAny = "<any>";
  for (std::size_t i = 0; i < std::min(expected.size(), shown.size()); ++i) {
    const std::size_t at = expected[i].find(kAny);
    if (at == std::string::npos) continue;
    const std::string before = expected[i].substr(0, at);
    const std::string behind = expected[i].substr(at + kAny.size());
    if (shown[i].starts_with(before) && shown[i].ends_with(behind)) expected[i] = shown[i];
  }
  return expected;
}

class Scripts : public BatchTest, public ::testing::WithParamInterface<Script> {};

TEST_P(Scripts, AnswerAsWritten) {
  for (const Record& record : GetParam().records) {
    if (record.batch == "restart") {
      Reopen();
      continue;
    }
    const Answer answer = Run(record.batch);
    const std::string place = GetParam().file.filename().string() + ":" +
                              std::to_string(record.line) + ": " + record.batch;
    EXPECT_EQ(answer.Numbers(), record.numbers) << answer.FirstText() << "\n" << place;
    EXPECT_THAT(answer.FirstText(), ::testing::StartsWith(record.text)) << place;
    EXPECT_EQ(Shown(answer), Filled(record.results, Shown(answer))) << place;
  }
}

INSTANTIATE_TEST_SUITE_P(Sql, Scripts, ::testing::ValuesIn(ReadScripts(SCRIPT_FOLDER)),
                         [](const auto& tested) { return tested.param.name; });

}  // namespace
}  // namespace sandbox::testing
