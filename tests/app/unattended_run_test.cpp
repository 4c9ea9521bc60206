#include "app/unattended_run.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <fstream>
#include <functional>

#include "tests/support/plain_endpoint.h"
#include "tests/support/process.h"
#include "tests/support/temp_folder.h"

namespace dorvane {

namespace {

using test::PlainEndpoint;
using test::ReadFile;
using test::TempFolder;
using testing::HasSubstr;
using testing::MatchesRegex;

class UnattendedRun : public testing::Test {
 protected:
  /// Runs a conversion that does no more than tell, with the log at `log_path` or in the folder.
  RunStatus Run(const std::function<void(IConversionListener&)>& tell,
                const std::string& log_path = "") {
    std::ofstream(folder_ / "n.dcs", std::ios::binary)
        << mark_
        << "1\r\nh\r\n1\r\nu\r\n\r\n\r\nd\r\nh\r\n2\r\nu\r\n\r\n\r\nd\r\na:<:"
           "b\r\nFalse\r\nTrue\r\n2\r\n"
           "False\r\n"
        << (log_path.empty() ? (folder_ / "log").string() : log_path) << "\r\n"
        << options_;
    return RunUnattendedConversion(folder_ / "n.dcs", [&](ServerKind kind, IRunHost& host) {
      host_ = &host;
      return std::make_unique<PlainEndpoint>(
          kind,
          [&](IDatabase&, const NameList&, IConversionListener& listener) { tell(listener); });
    });
  }
  std::string Log() const { return ReadFile(folder_ / "log"); }

  TempFolder folder_;
  std::string mark_;     // in front of the settings
  std::string options_;  // behind them
  IRunHost* host_ = nullptr;
};

TEST_F(UnattendedRun, WritesTheEventsAsLinesAndAppends) {
  const auto transfer = [](IConversionListener& listener) {
    listener.ConversionStarted(2, false);
    listener.TableConversionStarted("a");
    listener.TableContentTransferStarted("a", 1);
    listener.TableRecordConverted();
    listener.TableConversionSuccessed("a");
    listener.ConversionEnded();
  };
  EXPECT_EQ(Run(transfer), RunStatus::Converted);
  const std::string first = Log();
  EXPECT_THAT(first, MatchesRegex("############### Dorvane \\(New Conversion\\) #############\r\n"
                                  "Conversion started at: [^\r]+\r\n"
                                  "Converting table 'a' \\.\\.\\.\\.\\. \r\n"
                                  "Done!\r\n"
                                  "Note - 1 table, 1 row in 0:00\r\n"
                                  "Conversion ended at: [^\r]+\r\n"
                                  "######################### End OF Conversion "
                                  "#############################\r\n"));
  Run(transfer);
  EXPECT_EQ(Log().find(first), 0u);
  EXPECT_GT(Log().size(), first.size());
}

TEST_F(UnattendedRun, TheLogOfUtf8SettingsIsUtf8) {
  mark_ = "\xEF\xBB\xBF";
  Run([](IConversionListener& listener) { listener.TableConversionStarted("таблица"); });
  EXPECT_EQ(Log(), mark_ + "Converting table 'таблица' ..... \r\n");
}

TEST_F(UnattendedRun, ARunThatBreaksOffIsReportedAsFarAsItCame) {
  const std::string report = folder_ / "r.json";
  options_ = "Report=" + report + "\r\nReport=" + (folder_ / "missing/r.html").string() + "\r\n";
  const auto transfer = [&](IConversionListener& listener) {
    listener.ConversionStarted(2, false);
    host_->TableStepStarted("a");
    listener.TableConversionStarted("a");
    listener.TableConversionSuccessed("a");
    host_->TableStepEnded("a", std::chrono::seconds(1));
    throw RunTimeError(run_time::kOverflow, "x", "all is lost");
  };
  EXPECT_EQ(Run(transfer), RunStatus::Failed);
  EXPECT_THAT(ReadFile(report), HasSubstr("\"complete\": false"));
  EXPECT_THAT(ReadFile(report), HasSubstr("\"result\": \"done\""));
  EXPECT_THAT(ReadFile(report), HasSubstr("\"result\": \"not begun\""));
  EXPECT_THAT(ReadFile(report), HasSubstr("all is lost"));
  EXPECT_THAT(Log(), HasSubstr("all is lost"));
  EXPECT_THAT(Log(), HasSubstr("missing/r.html cannot be written: "));
}

TEST_F(UnattendedRun, AReportThatCannotBeWrittenFailsTheRunAlone) {
  options_ = "Report=" + (folder_ / "missing/r.json").string() + "\r\n";
  const auto transfer = [](IConversionListener& listener) {
    listener.ConversionStarted(0, false);
    listener.ConversionEnded();
  };
  EXPECT_EQ(Run(transfer), RunStatus::Failed);
  EXPECT_THAT(Log(), HasSubstr("End OF Conversion"));
  EXPECT_THAT(Log(), HasSubstr("missing/r.json cannot be written: "));
}

TEST_F(UnattendedRun, AnythingReportedFailsTheRunAndIsALineOfTheLog) {
  const std::pair<std::function<void(IConversionListener&)>, const char*> cases[] = {
      {[](IConversionListener& l) { l.ErrorOccured("went wrong", 16, "MySQL"); },
       "MySQL - went wrong\r\n"},
      {[](IConversionListener& l) { l.TableConversionFailed("a"); }, ""},
      {[this](IConversionListener&) {
         host_->UnclassifiedFailure("Failed to convert table a", 16, "Table Conversion");
       },
       "Table Conversion - Failed to convert table a\r\n"},
      {[](IConversionListener& l) {
         l.TableConversionStarted("evil\x1B[2J");
         l.ErrorOccured("Duplicate entry 'x\r\nDone!\r\n'", 16, "Insertion Error");
       },
       "Converting table 'evil\\x1B[2J' ..... \r\n"
       "Insertion Error - Duplicate entry 'x\\r\\nDone!\\r\\n'\r\n"},
      {[this](IConversionListener& l) {
         l.TableConversionStarted("a");
         host_->Inform("Table a: 3 rows were there already");
         l.TableConversionSuccessed("a");
         l.TableConversionStarted("b");
         l.ErrorOccured("5 of 9 rows were not copied", 16, "Insertion Error");
         l.TableConversionSuccessed("b");
       },
       "Converting table 'a' ..... \r\n"
       "Note - Table a: 3 rows were there already\r\nDone!\r\n"
       "Converting table 'b' ..... \r\n"
       "Insertion Error - 5 of 9 rows were not copied\r\n"
       "Done, with errors.\r\n"}};
  for (const auto& [tell, line] : cases) {
    const auto tell_and_end = [&](IConversionListener& listener) {
      tell(listener);
      listener.ConversionEnded();
    };
    EXPECT_EQ(Run(tell_and_end), RunStatus::Failed) << line;
    EXPECT_THAT(Log(), HasSubstr(line));
  }
}

TEST_F(UnattendedRun, AConnectionFailureIsItsLogLineAndNoEnd) {
  EXPECT_EQ(Run([this](IConversionListener& listener) {
              listener.ConversionStarted(2, false);
              host_->ConnectionFailed({"for a person", "Conversion Failed! for the log", "title"});
            }),
            RunStatus::Failed);
  EXPECT_THAT(Log(), HasSubstr("Conversion Failed! for the log\r\n"));
  EXPECT_THAT(Log(), Not(HasSubstr("ended")));
}

TEST_F(UnattendedRun, ASignalEndsItInOrder) {
  const RunStatus status = Run([this](IConversionListener& listener) {
    listener.ConversionStarted(2, false);
    listener.TableConversionStarted("a");
    EXPECT_FALSE(host_->IsStopping());
    std::raise(SIGTERM);
    EXPECT_TRUE(host_->IsStopping());
    listener.ConversionEnded();
  });
  EXPECT_EQ(static_cast<int>(status), 128 + SIGTERM);
  EXPECT_THAT(Log(), testing::EndsWith("Converting table 'a' ..... \r\nconversion failed! unkown "
                                       "error 5 - stopped by signal 15\r\n"));
  EXPECT_EXIT(Run([](IConversionListener&) {
                std::raise(SIGTERM);
                std::raise(SIGTERM);
              }),
              testing::KilledBySignal(SIGTERM), "");
}

TEST_F(UnattendedRun, AStandardErrorThatTakesNothingIsNoReasonToFail) {
  const int full = open("/dev/full", O_WRONLY);
  const int saved = dup(STDERR_FILENO);
  dup2(full, STDERR_FILENO);
  // The log lies on the same full disk.
  const RunStatus status =
      Run([](IConversionListener& listener) { listener.ConversionEnded(); }, "/dev/full");
  dup2(saved, STDERR_FILENO);
  close(full);
  close(saved);
  EXPECT_EQ(status, RunStatus::Failed);
}

TEST_F(UnattendedRun, TwoRunsOfTheSameSettingsDoNotMeet) {
  RunStatus second = RunStatus::Converted;
  bool transferred = false;
  EXPECT_EQ(Run([&](IConversionListener& listener) {
              IRunHost* const first_host = host_;
              second = RunUnattendedConversion(folder_ / "n.dcs", [&](ServerKind kind, IRunHost&) {
                return std::make_unique<PlainEndpoint>(
                    kind,
                    [&](IDatabase&, const NameList&, IConversionListener&) { transferred = true; });
              });
              host_ = first_host;
              listener.ConversionEnded();
            }),
            RunStatus::Converted);
  EXPECT_EQ(second, RunStatus::Failed);
  EXPECT_FALSE(transferred);
  EXPECT_THAT(Log(), HasSubstr("conversion failed! unkown error 70 - another run of these settings "
                               "is still at work\r\n"));
}

TEST_F(UnattendedRun, AnEscapedErrorIsTheRunsOwnLine) {
  EXPECT_EQ(Run([](IConversionListener&) { throw RunTimeError(7, "x", "out of memory"); }),
            RunStatus::Failed);
  EXPECT_EQ(Log(), "conversion failed! unkown error 7 - out of memory\r\n");
}

TEST_F(UnattendedRun, UnusableSettingsGoToStandardError) {
  const auto unusable = [&](const std::string& bytes) {
    std::ofstream(folder_ / "bad.dcs", std::ios::binary) << bytes;
    testing::internal::CaptureStderr();
    EXPECT_EQ(RunUnattendedConversion(
                  folder_ / "bad.dcs",
                  [](ServerKind kind, IRunHost&) { return std::make_unique<PlainEndpoint>(kind); }),
              RunStatus::SettingsUnusable);
    return testing::internal::GetCapturedStderr();
  };
  EXPECT_EQ(unusable("3\r\n"), "Conversion Failed - unexpected conversion direction value.\n");
  EXPECT_EQ(ReadFile(folder_ / "bad.dcs.log"),
            "Conversion Failed - unexpected conversion direction value.\r\n");
  EXPECT_THAT(unusable("1\r\nh\r\n"), HasSubstr("conversion failed! unkown error 62 - "));
  std::string noise;
  for (int i = 0; i < 5000; ++i) noise.push_back(static_cast<char>(i * 37));
  EXPECT_NE(unusable("1\r\n" + noise), "");
}

TEST_F(UnattendedRun, ABadLineIsToldInTheLogThatTheSettingsName) {
  const std::string log = (folder_ / "log").string();
  testing::internal::CaptureStderr();
  EXPECT_EQ(Run({}, log + "\r\nIdle limit=soon"), RunStatus::SettingsUnusable);
  EXPECT_EQ(
      Log(),
      "conversion failed! unkown error 13 - Idle limit: no whole number of seconds (line 20 of "
      "n.dcs: Idle limit=soon)\r\n");
  EXPECT_FALSE(std::filesystem::exists(folder_ / "n.dcs.log"));
  testing::internal::GetCapturedStderr();
}

TEST_F(UnattendedRun, ADateThatTheLogHasNoLettersForIsInIsoForm) {
  ASSERT_EQ(
      test::Run({"localedef", "-i", "ja_JP", "-f", "UTF-8", (folder_ / "ja").string()}).status, 0);
  setenv("LOCPATH", folder_.Path().c_str(), 1);
  ASSERT_NE(std::setlocale(LC_TIME, "ja"), nullptr);
  Run([](IConversionListener& listener) { listener.ConversionStarted(1, false); });
  std::setlocale(LC_TIME, "C");
  unsetenv("LOCPATH");
  EXPECT_THAT(Log(), testing::ContainsRegex("started at: [0-9-]+ [0-9:]+\r\n"));
}

TEST_F(UnattendedRun, ALogThatCannotBeOpenedIsUnusableOneThatFillsUpIsAFailure) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(Run({}, (folder_ / "no" / "log").string()), RunStatus::SettingsUnusable);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("unkown error 76"));
  EXPECT_THAT(ReadFile(folder_ / "n.dcs.log"), HasSubstr("unkown error 76"));

  testing::internal::CaptureStderr();
  bool finished = false;
  EXPECT_EQ(Run(
                [&](IConversionListener& listener) {
                  listener.ConversionStarted(1, false);
                  listener.TableConversionStarted("a");
                  listener.ConversionEnded();
                  finished = true;
                },
                "/dev/full"),
            RunStatus::Failed);
  EXPECT_TRUE(finished);  // the conversion itself is not lost with its log
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("The log cannot be written"));
}

/// Takes a file from under whoever has it open in this process.
void CloseUnder(const std::filesystem::path& path) {
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code ignored;
    if (std::filesystem::read_symlink(entry, ignored) != path) continue;
    close(std::stoi(entry.path().filename()));
    return;
  }
  ADD_FAILURE() << path << " is not open";
}

TEST_F(UnattendedRun, ALogThatIsNotStoredIsAFailure) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(Run([&](IConversionListener& listener) {
              listener.ConversionStarted(1, false);
              listener.ConversionEnded();
              CloseUnder(folder_ / "log");
            }),
            RunStatus::Failed);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("The log cannot be written"));
}

}  // namespace
}  // namespace dorvane
