// Runs the scripts of this folder.
#include <fmt/ranges.h>

#include <algorithm>
#include <map>

#include "tests/sandbox/sql/batch.h"
#include "tests/sandbox/sql/script.h"

namespace sandbox::testing {

namespace {

/// The results, each with the names of its columns.
std::vector<std::string> Shown(const Answer& answer) {
  std::vector<std::string> lines;
  for (const Result& result : answer.results) {
    lines.push_back("---- " + RowText(result.Names()));
    for (const auto& row : result.rows) lines.push_back(ShownRow(RowText(row)));
  }
  return lines;
}

/// The expected lines with what the answer has instead of "<any>" and of names left out.
std::vector<std::string> Filled(std::vector<std::string> expected,
                                const std::vector<std::string>& shown) {
  constexpr std::string_view kAny = "<any>";
  for (std::size_t i = 0; i < std::min(expected.size(), shown.size()); ++i) {
    if (expected[i] == "----") expected[i] += " " + std::string(kAny);
    const std::size_t at = expected[i].find(kAny);
    if (at == std::string::npos) continue;
    const std::string before = expected[i].substr(0, at);
    const std::string behind = expected[i].substr(at + kAny.size());
    if (shown[i].starts_with(before) && shown[i].ends_with(behind)) expected[i] = shown[i];
  }
  return expected;
}

std::string Level(const Answer& answer) {
  if (answer.messages.empty()) return "";
  const ServerMessage& first = answer.messages.front();
  return fmt::format("level {} state {} line {}", first.severity, first.state, first.line);
}

class Scripts : public BatchTest, public ::testing::WithParamInterface<Script> {
 protected:
  void Run(const Record& record) {
    if (record.batch == "restart") {
      others_.clear();
      Reopen();
    } else if (record.batch == "leave") {
      others_.erase(record.login);
    } else if (record.batch.starts_with("load ")) {
      Load(GetParam().file.parent_path() / record.batch.substr(5));
    } else {
      Check(record, BatchTest::Run(SessionOf(record.login), record.batch));
    }
  }

 private:
  EngineSession& SessionOf(const std::string& login) {
    if (login.empty()) return *session;
    auto& other = others_[login];
    if (!other) other = NewSession(login);
    return *other;
  }

  void Load(const std::filesystem::path& file) {
    for (const std::string& batch : ReadBatches(file)) {
      for (const ServerMessage& message : BatchTest::Run(batch).messages)
        EXPECT_LE(message.severity, 10) << message.text << "\n" << batch;
    }
  }

  static void Check(const Record& record, const Answer& answer) {
    EXPECT_EQ(answer.Numbers(), record.numbers) << answer.FirstText();
    EXPECT_THAT(answer.FirstText(), ::testing::StartsWith(record.text));
    if (!record.level.empty()) {
      EXPECT_EQ(Level(answer), record.level);
    }
    if (!record.counts.empty()) {
      EXPECT_EQ(fmt::format("counts {}", fmt::join(answer.counts, " ")), record.counts);
    }
    EXPECT_EQ(Filled(record.results, Shown(answer)), Shown(answer));
  }

  std::map<std::string, std::unique_ptr<EngineSession>> others_;  // by their logins
};

TEST_P(Scripts, AnswerAsWritten) {
  for (const Record& record : GetParam().records) {
    SCOPED_TRACE(fmt::format("{}:{}: {}", GetParam().file.filename().string(), record.line,
                             record.batch.substr(0, 2000)));
    Run(record);
  }
}

INSTANTIATE_TEST_SUITE_P(Sql, Scripts, ::testing::ValuesIn(ReadScripts(SCRIPT_FOLDER)),
                         [](const auto& tested) { return tested.param.name; });

}  // namespace
}  // namespace sandbox::testing
