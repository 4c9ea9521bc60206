#include "job/run_report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "job/run_recorder.h"
#include "tests/endpoint/recorders.h"
#include "tests/support/plain_endpoint.h"
#include "tests/support/process.h"
#include "tests/support/temp_folder.h"

namespace dorvane {

namespace {

using namespace std::chrono_literals;
using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

RunReport Sample() {
  RunReport report{.source = "MySQL, h:1, database a&b", .destination = "SQL Server, h:2, d"};
  report.options = {{"Rows", "copied"}};
  report.started = RunReport::Time(1700000000s);
  report.ended = RunReport::Time(1700000012500ms);
  report.is_complete = true;
  ReportedTable& table = report.tables.emplace_back();
  table.name = "<script>alert('x')</script>";
  table.state = ReportedTable::State::DoneWithErrors;
  table.announced = table.rows = 1234567;
  table.conversion_time = 10s;
  table.messages = {{true, "no \"such\" <b>\x1B[1m row \xFF"}, {false, "a note"}};
  table.verification = ReportedMessage{false, "Verified: 1234567 rows equal"};
  table.verification_time = 2500ms;
  return report;
}

TEST(RunReport, AMachineReadsEveryNumber) {
  const json report = json::parse(JsonReport(Sample()));
  EXPECT_EQ(report["started"], "2023-11-14T22:13:20Z");
  EXPECT_EQ(report["seconds"], 12.5);
  EXPECT_EQ(report["rows"], 1234567);
  EXPECT_EQ(report["options"]["Rows"], "copied");
  const json& table = report["tables"].at(0);
  EXPECT_EQ(table["name"], "<script>alert('x')</script>");
  EXPECT_EQ(table["result"], "done, with errors");
  EXPECT_EQ(table["rows_per_second"], 123456);
  EXPECT_EQ(table["messages"].at(0)["kind"], "error");
  EXPECT_EQ(table["messages"].at(0)["text"], "no \"such\" <b>\x1B[1m row \xEF\xBF\xBD");
  EXPECT_EQ(table["verification"]["equal"], true);
  EXPECT_EQ(table["verification"]["seconds"], 2.5);
}

TEST(RunReport, APageShowsWhatNamesAndMessagesHoldAndObeysNoneOfIt) {
  const std::string page = HtmlReport(Sample());
  EXPECT_THAT(page, Not(HasSubstr("<script")));
  EXPECT_THAT(page, Not(HasSubstr("\x1B")));
  EXPECT_THAT(page, HasSubstr("&lt;script&gt;alert('x')&lt;/script&gt;</th>"));
  EXPECT_THAT(page, HasSubstr("database a&amp;b</dd>"));
  EXPECT_THAT(page, HasSubstr("no &quot;such&quot; &lt;b&gt;\\x1B[1m row \xEF\xBF\xBD</li>"));
  EXPECT_THAT(page, HasSubstr(">1,234,567</td>"));
  EXPECT_THAT(page, HasSubstr(">123,456</td>"));
  EXPECT_THAT(page, HasSubstr("Verified: 1234567 rows equal</span>"));
}

TEST(RunReport, TheNameSaysWhatIsWritten) {
  const test::TempFolder folder;
  EXPECT_TRUE(IsReportName("/a.b/R.HTML"));
  EXPECT_FALSE(IsReportName("/a.html/report"));
  EXPECT_FALSE(IsReportName(".json.bak"));
  SaveReport(folder / "r.json", Sample());
  EXPECT_EQ(json::parse(test::ReadFile(folder / "r.json"))["task"], "Conversion");
  SaveReport(folder / "r.HTM", Sample());
  EXPECT_THAT(test::ReadFile(folder / "r.HTM"), testing::StartsWith("<!DOCTYPE html>"));
}

class RunRecorderTest : public testing::Test {
 protected:
  void Begin(const NameList& tables) {
    src_.SetPassword("open sesame");
    recorder_.Begin("Conversion", src_, dest_, tables);
  }
  /// A step of a table that takes so many seconds.
  void Step(const char* table, int seconds, const std::function<void()>& tell) {
    recorder_.TableStepStarted(table);
    tell();
    recorder_.TableStepEnded(table, std::chrono::seconds(seconds));
  }
  ReportedTable Table(std::size_t position) const { return recorder_.Report().tables.at(position); }

  test::EventRecorder events_;
  test::HostRecorder host_;
  RunRecorder recorder_{events_, host_};
  test::PlainEndpoint src_{ServerKind::MsSql};
  test::PlainEndpoint dest_{ServerKind::MySql};
};

TEST_F(RunRecorderTest, WhatIsToldBelongsToTheTableWhoseStepItIs) {
  Begin({"a", "b", "c"});
  recorder_.Inform("of the run");
  Step("a", 2, [&] {
    recorder_.TableConversionStarted("a");
    recorder_.TableContentTransferStarted("a", 2);
    recorder_.TableRecordConverted();
    recorder_.TableRecordConverted();
    recorder_.TableConversionSuccessed("a");
  });
  Step("b", 1, [&] {
    recorder_.TableConversionStarted("b");
    recorder_.UnclassifiedFailure("gone", 16, "Table Conversion");  // and no word of its end
  });
  Step("a", 3, [&] {
    recorder_.TableComparisonStarted("a", 2);
    recorder_.ErrorOccured("Table a: 1 row is missing", 16, "Verification");
  });

  EXPECT_EQ(Table(0).state, ReportedTable::State::DoneWithErrors);
  EXPECT_EQ(Table(0).rows, 2);
  EXPECT_EQ(Table(0).conversion_time, 2s);
  EXPECT_EQ(Table(0).verification_time, 3s);
  ASSERT_TRUE(Table(0).verification);
  EXPECT_EQ(Table(0).verification->text, "1 row is missing");
  EXPECT_TRUE(Table(0).messages.empty());
  EXPECT_EQ(Table(1).state, ReportedTable::State::Failed);
  EXPECT_EQ(Table(1).messages.at(0).text, "Table Conversion - gone");
  EXPECT_EQ(Table(2).state, ReportedTable::State::NotBegun);
  EXPECT_FALSE(recorder_.Report().is_complete);
  recorder_.ConversionEnded();
  EXPECT_TRUE(recorder_.Report().is_complete);
  EXPECT_FALSE(recorder_.Report().succeeded);
  EXPECT_EQ(recorder_.Report().messages.at(0).text, "of the run");
  EXPECT_THAT(JsonReport(recorder_.Report()), Not(HasSubstr("sesame")));
}

TEST_F(RunRecorderTest, ATableWhoseRowsWaitIsDoneWhenTheyAreThere) {
  Begin({"a"});
  Step("a", 2, [&] {
    recorder_.TableConversionStarted("a");
    recorder_.Inform("1 of 1 rows wait");
  });
  EXPECT_EQ(Table(0).state, ReportedTable::State::AtWork);
  recorder_.TableConversionStarted("a");
  recorder_.TableConversionSuccessed("a");
  recorder_.ConversionEnded();
  EXPECT_EQ(Table(0).state, ReportedTable::State::Done);
  EXPECT_TRUE(recorder_.Report().succeeded);
  Begin({"a"});
  EXPECT_EQ(Table(0).state, ReportedTable::State::NotBegun);
}

TEST_F(RunRecorderTest, TheRestOfARunIsReportedWithWhatWasDoneBefore) {
  Begin({"a", "b"});
  Step("a", 2, [&] {
    recorder_.TableConversionStarted("a");
    recorder_.TableConversionSuccessed("a");
  });
  Step("b", 2, [&] {
    recorder_.TableConversionStarted("b");
    recorder_.ErrorOccured("no", 16, "x");
  });
  recorder_.AddFailure("stopped");
  recorder_.ConversionEnded();
  EXPECT_FALSE(recorder_.Report().succeeded);
  recorder_.Continue(recorder_.Report(), {"b"});
  EXPECT_FALSE(recorder_.Report().is_complete);
  recorder_.TableConversionStarted("b");
  recorder_.TableConversionSuccessed("b");
  recorder_.ConversionEnded();
  EXPECT_EQ(Table(0).conversion_time, 2s);
  EXPECT_EQ(Table(0).state, ReportedTable::State::Done);
  EXPECT_TRUE(Table(1).messages.empty());
  EXPECT_TRUE(recorder_.Report().succeeded);
}

}  // namespace
}  // namespace dorvane
