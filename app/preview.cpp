#include "app/preview.h"

#include <fmt/format.h>

#include <cstdio>

#include "app/standard_error.h"
#include "app/stop_signals.h"
#include "job/conversion_settings.h"
#include "platform/files/text_file.h"
#include "platform/text/utf8.h"

namespace dorvane {

namespace {

constexpr std::string_view ProductOf(ServerKind kind) {
  return kind == ServerKind::MsSql ? "MS SQL Server" : "MySQL";
}

std::string DatabaseOf(const IDatabase& endpoint) {
  return fmt::format("{} {}/{}", ProductOf(endpoint.Kind()), endpoint.Server(), endpoint.DbName());
}

/// Prints the script to standard output.
class Script : public IConversionListener, public IRunHost {
 public:
  void Statement(std::string_view sql, std::string_view terminator) {
    if (sql.starts_with("--")) return Line(sql);
    Line(fmt::format("{}{}", sql, terminator));
  }
  void Comment(std::string_view text) { Line(fmt::format("-- {}", text::Visible(text))); }
  void Remark(std::string_view text) {
    ++remarks_;
    Comment(text);
  }
  void Break() { Line(""); }
  std::int64_t Remarks() const { return remarks_; }
  bool HasEnded() const { return has_ended_; }
  bool IsWritten() const { return is_written_ && std::fflush(stdout) == 0; }

  void ErrorOccured(std::string_view message, std::int32_t /*style*/,
                    std::string_view source) override {
    Remark(fmt::format("Lost: {} - {}", source, message));
  }
  void ConversionStarted(std::int16_t, bool) override {}
  void ConversionEnded() override { has_ended_ = !IsStopping(); }
  void TableConversionSuccessed(std::string_view) override {}
  void TableConversionFailed(std::string_view) override {}
  void TableContentTransferStarted(std::string_view, std::int32_t rows) override {
    Comment(fmt::format("{} row{} copied", rows, rows == 1 ? " is" : "s are"));
  }
  void TableRecordConverted() override {}
  void TableConversionStarted(std::string_view table) override {
    Break();
    Comment(fmt::format("Table {}", table));
  }
  void TableRelationsConversionStarted(std::string_view table) override {
    Break();
    Comment(fmt::format("Relationships of table {}", table));
  }

  void ConnectionFailed(const ConnectionFailure& failure) override { Remark(failure.log_line); }
  void ShowMessage(std::string_view message, std::int32_t style, std::string_view title) override {
    ErrorOccured(message, style, title);
  }
  void Inform(std::string_view message) override { Remark(fmt::format("Note: {}", message)); }
  void UnclassifiedFailure(std::string_view message, std::int32_t style,
                           std::string_view title) override {
    ErrorOccured(message, style, title);
  }
  void Yield() override {}
  bool IsStopping() const override { return StopSignals::Received() != 0; }

 private:
  void Line(std::string_view text) {
    is_written_ = is_written_ && std::fwrite(text.data(), 1, text.size(), stdout) == text.size() &&
                  std::fputc('\n', stdout) != EOF;
  }

  std::int64_t remarks_ = 0;
  bool has_ended_ = false;
  bool is_written_ = true;
};

void Rehearse(const ConversionSettings& settings, Script& script) {
  const bool is_to_my_sql = settings.dest->Kind() == ServerKind::MySql;
  script.Comment(fmt::format("What a run would do: {} table{} from {} to {}. Nothing was changed.",
                             settings.tables.size(), settings.tables.size() == 1 ? "" : "s",
                             DatabaseOf(*settings.src), DatabaseOf(*settings.dest)));
  settings.src->RehearseTransfer(*settings.dest, settings.tables, [&](std::string_view sql) {
    script.Statement(sql, is_to_my_sql ? ";" : "\ngo");
  });
  script.Break();
  script.Comment(script.Remarks() == 0 ? "Nothing would be lost."
                                       : fmt::format("{} remark{}: see above.", script.Remarks(),
                                                     script.Remarks() == 1 ? "" : "s"));
}

}  // namespace

RunStatus RunPreview(const std::filesystem::path& settings_file,
                     const HostedEndpointFactory& make_endpoint) {
  const StopSignals signals;
  Script script;
  const auto fail = [](RunStatus status, std::string_view why) {
    WriteStandardError(fmt::format("Dorvane: {}\n", text::Visible(why)));
    return status;
  };
  ConversionSettings settings;
  try {
    files::LineReader file(settings_file);
    settings = ReadConversionSettings(file, [&](ServerKind kind) {
      auto endpoint = make_endpoint(kind, script);
      endpoint->SetListener(&script);
      return endpoint;
    });
  } catch (const std::exception& error) {
    return fail(RunStatus::kSettingsUnusable, error.what());
  }
  try {
    Rehearse(settings, script);
  } catch (const std::exception& error) {
    return fail(RunStatus::kFailed, error.what());
  }
  if (const int signal = StopSignals::Received()) return StoppedBy(signal);
  if (!script.IsWritten()) return fail(RunStatus::kFailed, "the preview cannot be written");
  const bool is_clean = script.HasEnded() && script.Remarks() == 0;
  return is_clean ? RunStatus::kConverted : RunStatus::kFailed;
}

}  // namespace dorvane
