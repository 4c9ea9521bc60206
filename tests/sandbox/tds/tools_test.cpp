#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "sandbox/tds/server.h"
#include "tests/sandbox/tds/fake_engine.h"
#include "tests/sandbox/tds/sample_values.h"
#include "tests/support/process.h"
#include "tests/support/temp_folder.h"

namespace sandbox::tds {

namespace {

using dorvane::test::ReadFile;
using ::testing::HasSubstr;

/// The copying tool drops the blanks that fill up a char column.
Value WithoutPadding(const SampleValue& sample) {
  if (sample.type.type != SqlType::Char && sample.type.type != SqlType::NChar) return sample.value;
  const auto& text = std::get<std::string>(sample.value);
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

/// The command-line tools that people use, against a table "t" with a column of every type that
/// the copying tool has a text form for.
class Tools : public ::testing::Test {
 protected:
  Tools() {
    for (const SampleValue& sample : SampleValues()) {
      // The tool leaves row versions out and writes times with three digits at most.
      if (sample.type.type == SqlType::Timestamp || sample.type.scale == 7) continue;
      samples_.push_back(sample);
      engine_.bulk_columns.push_back({.name = sample.name, .type = sample.type});
    }
    engine_.batches["SET FMTONLY ON select * from t SET FMTONLY OFF"] = Answer(false);
    engine_.batches["select * from t"] = Answer(true);
    std::ofstream(Configuration()) << "[sandbox]\nhost = 127.0.0.1\nport = " << server_.Port()
                                   << "\ntds version = 7.4\nclient charset = UTF-8\n";
  }

  FakeEngine::Answer Answer(bool with_rows) {
    return [this, with_rows](EngineSession&, ResultSink& sink) {
      std::vector<Value> row;
      for (const SampleValue& sample : samples_) row.push_back(sample.value);
      sink.Columns(engine_.bulk_columns);
      if (with_rows) sink.Row(row);
      sink.Done(with_rows ? 1 : 0);
    };
  }
  std::string Configuration() { return (folder_ / "freetds.conf").string(); }
  dorvane::test::Outcome RunTool(std::vector<std::string> command) {
    command.insert(command.end(), {"-S", "sandbox", "-U", "sa", "-P", "secret"});
    return dorvane::test::Run(command, std::chrono::seconds(30),
                              {{"FREETDSCONF", Configuration()}});
  }

  dorvane::test::TempFolder folder_;
  std::vector<SampleValue> samples_;
  FakeEngine engine_;
  Server server_{engine_, {"sa", "secret"}, 0};
};

TEST_F(Tools, CopyATableOutAndIn) {
  const std::string file = (folder_ / "t.txt").string();
  auto out = RunTool({"freebcp", "t", "out", file, "-c", "-t", "|", "-r", "~"});
  EXPECT_EQ(out.status, 0) << out.output;
  EXPECT_THAT(ReadFile(file), HasSubstr("|-1234567.89|"));
  auto in = RunTool({"freebcp", "t", "in", file, "-c", "-t", "|", "-r", "~"});
  EXPECT_THAT(in.output, HasSubstr("1 rows copied."));
  auto rows = engine_.BulkRows();
  ASSERT_EQ(rows.size(), 1U);
  for (std::size_t i = 0; i < samples_.size(); ++i) {
    EXPECT_TRUE(SameValue(rows[0][i], WithoutPadding(samples_[i]))) << samples_[i].name;
  }
}

TEST_F(Tools, CopyManyRowsInBatches) {
  engine_.bulk_columns = {{.name = "n", .type = {SqlType::Int}},
                          {.name = "s", .type = {SqlType::NVarChar, 40}}};
  engine_.batches["SET FMTONLY ON select * from t SET FMTONLY OFF"] = [&](EngineSession&,
                                                                          ResultSink& sink) {
    sink.Columns(engine_.bulk_columns);
    sink.Done(0);
  };
  const std::string file = (folder_ / "many.txt").string();
  {
    std::ofstream rows(file);
    for (int i = 0; i < 5000; ++i) rows << i << "|Z\u00fcrich " << i << "\n";
  }
  auto in = RunTool({"freebcp", "t", "in", file, "-c", "-t", "|", "-b", "1000"});
  EXPECT_THAT(in.output, HasSubstr("5000 rows copied."));
  auto rows = engine_.BulkRows();
  ASSERT_EQ(rows.size(), 5000U);
  EXPECT_TRUE(SameValue(rows[4999][1], std::string("Z\u00fcrich 4999")));
}

TEST_F(Tools, ATerminalSessionShowsRowsAndErrors) {
  engine_.batches["bad"] = [](EngineSession&, ResultSink& sink) {
    sink.Message({.number = 102, .text = "Incorrect syntax near 'bad'.", .procedure = {}});
  };
  const std::string script = (folder_ / "script.sql").string();
  std::ofstream(script) << "select * from t\ngo\nbad\ngo\n";
  auto shown = dorvane::test::Run({"sh", "-c", "tsql -S sandbox -U sa -P secret < " + script},
                                  std::chrono::seconds(30), {{"FREETDSCONF", Configuration()}});
  EXPECT_THAT(shown.output, HasSubstr("(1 row affected)"));
  EXPECT_THAT(shown.output, HasSubstr("Msg 102 (severity 16, state 1)"));
  EXPECT_THAT(shown.output, HasSubstr("\u65e5\u672c \U0001F642"));
}

}  // namespace
}  // namespace sandbox::tds
