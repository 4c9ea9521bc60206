#include "app/unattended_listener.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <clocale>
#include <ctime>

#include "app/standard_error.h"
#include "app/stop_signals.h"
#include "job/progress_text.h"
#include "platform/text/code_page.h"
#include "platform/text/utf8.h"

namespace dorvane {

namespace {

/// Date and time as the user's locale writes them; ISO order where no locale is set, or one whose
/// letters the log does not have.
std::string GeneralDateAndTime() {
  const std::tm now = fmt::localtime(std::time(nullptr));
  const std::string_view locale = std::setlocale(LC_TIME, nullptr);
  const bool plain = locale == "C" || locale == "POSIX" || locale.starts_with("C.");
  char local[128];
  const std::string_view text(local, std::strftime(local, sizeof local, "%x %X", &now));
  if (!plain && text::FitsAnsi(text)) return std::string(text);
  return fmt::format("{:%Y-%m-%d %H:%M:%S}", now);
}

void PrintError(std::string_view line) {
  WriteStandardError(std::string(line) + "\n");
}

}  // namespace

void UnattendedListener::OpenLog(const std::string& path, files::TextForm form) {
  log_.emplace(path, form);
}

void UnattendedListener::CloseLog() {
  if (!log_) return;
  try {
    log_->Close();
  } catch (const RunTimeError& error) {
    GiveUpLog(error);
  }
}

void UnattendedListener::Log(std::string_view text) {
  progress_.Clear();
  // One message, one line: nothing that a server or a name says looks like a line of ours.
  const std::string line = text::Visible(text);
  if (!log_ || log_broken_) return PrintError(line);
  try {
    log_->WriteLine(line);
  } catch (const RunTimeError& error) {
    GiveUpLog(error);
    PrintError(line);
  }
}

void UnattendedListener::GiveUpLog(const RunTimeError& error) {
  failed_ = true;
  log_broken_ = true;
  PrintError(fmt::format("The log cannot be written: {}", error.Description()));
}

void UnattendedListener::ErrorOccured(std::string_view message, std::int32_t /*message_style*/,
                                      std::string_view source) {
  failed_ = true;
  table_failed_ = true;
  Log(fmt::format("{} - {}", source, message));
}

void UnattendedListener::ConversionStarted(std::int16_t no_of_tables, bool /*relations_included*/) {
  progress_.StartConversion(no_of_tables);
  started_ = std::chrono::steady_clock::now();
  Log("############### Dorvane (New Conversion) #############");
  Log("Conversion started at: " + GeneralDateAndTime());
}

void UnattendedListener::ConversionEnded() {
  if (IsStopping()) return;
  ended_ = true;
  const std::string summary =
      SummaryText(tables_, rows_, std::chrono::steady_clock::now() - started_);
  Inform(summary);
  progress_.End(summary);
  Log("Conversion ended at: " + GeneralDateAndTime());
  Log("######################### End OF Conversion #############################");
}

void UnattendedListener::TableConversionSuccessed(std::string_view /*table_name*/) {
  ++tables_;
  Log(table_failed_ ? "Done, with errors." : "Done!");
}

void UnattendedListener::TableConversionFailed(std::string_view /*table_name*/) {
  failed_ = true;
}

void UnattendedListener::TableContentTransferStarted(std::string_view table_name,
                                                     std::int32_t no_of_records) {
  progress_.StartTable(table_name, no_of_records);
}

void UnattendedListener::TableRecordConverted() {
  ++rows_;
  progress_.CountRow();
}

void UnattendedListener::TableConversionStarted(std::string_view table_name) {
  table_failed_ = false;
  Log(fmt::format("Converting table '{}' ..... ", table_name));
}

void UnattendedListener::TableRelationsConversionStarted(std::string_view /*table_name*/) {}

void UnattendedListener::ConnectionFailed(const ConnectionFailure& failure) {
  failed_ = true;
  Log(failure.log_line);
}

void UnattendedListener::ShowMessage(std::string_view message, std::int32_t style,
                                     std::string_view title) {
  ErrorOccured(message, style, title);
}

bool UnattendedListener::IsStopping() const {
  return StopSignals::Received() != 0;
}

void UnattendedListener::Inform(std::string_view message) {
  Log(fmt::format("Note - {}", message));
}

void UnattendedListener::UnclassifiedFailure(std::string_view message, std::int32_t style,
                                             std::string_view title) {
  ErrorOccured(message, style, title);
}

}  // namespace dorvane
