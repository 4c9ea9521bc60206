#include "app/unattended_run.h"

#include <fmt/format.h>
#include <unistd.h>

#include <optional>

#include "app/standard_error.h"
#include "app/stop_signals.h"
#include "app/trace.h"
#include "app/unattended_listener.h"
#include "job/conversion_settings.h"
#include "job/run_recorder.h"
#include "platform/files/lock.h"
#include "platform/files/text_file.h"
#include "platform/text/ascii.h"
#include "platform/text/utf8.h"

namespace dorvane {

namespace {

/// Failures of client libraries and of the standard library have no number of their own here.
constexpr std::int32_t kUnnumbered = 5;

/// What an unattended run does with the endpoints that its settings describe.
struct Task {
  std::string_view name;  // "Conversion"
  void (IDatabase::*run)(IDatabase& dest, const NameList& src_tables);
};
constexpr Task kConversion{"Conversion", &IDatabase::TransferToDest};
constexpr Task kComparison{"Comparison", &IDatabase::CompareWithDest};

std::string UnknownFailure(std::int32_t number, std::string_view description) {
  return fmt::format("conversion failed! unkown error {} - {}", number, description);
}

/// Runs a step of the run; what to log when it failed, else none.
template <typename Step>
std::optional<std::string> FailureOf(Step step) {
  try {
    step();
    return std::nullopt;
  } catch (const UnexpectedDirection& error) {
    return error.what();
  } catch (const RunTimeError& error) {
    return UnknownFailure(error.Number(), error.Description());
  } catch (const std::exception& error) {
    return UnknownFailure(kUnnumbered, error.what());
  }
}

/// Two runs of the same settings would copy every row twice and drop each other's tables. Throws
/// RunTimeError.
files::Lock LockOf(const std::filesystem::path& settings_file) {
  auto lock = files::Lock::Try(settings_file);
  if (!lock) {
    throw RunTimeError(run_time::kPermissionDenied, "Dorvane",
                       "another run of these settings is still at work");
  }
  return std::move(*lock);
}

void RunTask(const Task& task, const ConversionSettings& settings) {
  ((*settings.src).*task.run)(*settings.dest, settings.tables);
  if (const int signal = StopSignals::Received()) {
    throw RunTimeError(kUnnumbered, "Dorvane", fmt::format("stopped by signal {}", signal));
  }
}

void SaveReports(const NameList& paths, const RunReport& report, UnattendedListener& listener) {
  for (const std::string& path : paths) {
    try {
      SaveReport(path, report);
    } catch (const RunTimeError& error) {
      listener.MarkFailed();
      listener.Log(fmt::format("The report {} cannot be written: {}", path, error.Description()));
    }
  }
}

void RunReported(const Task& task, const ConversionSettings& settings, RunRecorder& recorder,
                 UnattendedListener& listener) {
  recorder.Begin(task.name, *settings.src, *settings.dest, settings.tables);
  if (const auto failure = FailureOf([&] { RunTask(task, settings); })) {
    recorder.AddFailure(*failure);
    listener.MarkFailed();
    listener.Log(*failure);
  }
  SaveReports(settings.src->Options().reports, recorder.Report(), listener);
}

RunStatus Run(const Task& task, const std::filesystem::path& settings_file,
              const HostedEndpointFactory& make_endpoint) {
  const StopSignals signals;
  UnattendedListener listener(task.name);
  RunRecorder recorder(listener, listener);
  ConversionSettings settings;
  const auto unusable = FailureOf([&] {
    files::LineReader file(settings_file);
    settings = ReadConversionSettings(file, [&](ServerKind kind) {
      auto endpoint = make_endpoint(kind, recorder);
      endpoint->SetListener(&recorder);
      return endpoint;
    });
    listener.OpenLog(settings.log_path, settings.form);
  });
  if (unusable) {
    listener.Log(*unusable);
    LeaveTrace(settings_file, text::Visible(*unusable));
    return RunStatus::SettingsUnusable;
  }

  const auto failure = FailureOf([&] {
    const files::Lock lock = LockOf(settings_file);
    RunReported(task, settings, recorder, listener);
  });
  if (failure) {
    listener.MarkFailed();
    listener.Log(*failure);
  }
  listener.CloseLog();
  if (const int signal = StopSignals::Received()) return StoppedBy(signal);
  if (listener.Succeeded()) return RunStatus::Converted;
  if (isatty(STDERR_FILENO) == 1) {
    WriteStandardError(
        fmt::format("The {} failed; see {}\n", text::ToLower(task.name), settings.log_path));
  }
  return RunStatus::Failed;
}

}  // namespace

RunStatus RunUnattendedConversion(const std::filesystem::path& settings_file,
                                  const HostedEndpointFactory& make_endpoint) {
  return Run(kConversion, settings_file, make_endpoint);
}

RunStatus RunUnattendedComparison(const std::filesystem::path& settings_file,
                                  const HostedEndpointFactory& make_endpoint) {
  return Run(kComparison, settings_file, make_endpoint);
}

}  // namespace dorvane
