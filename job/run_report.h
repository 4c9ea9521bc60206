#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace dorvane {

/// What a run has told, in UTF-8 as far as servers keep to it.
struct ReportedMessage {
  bool is_failure = false;
  std::string text;
};

/// What came of one table of a run.
struct ReportedTable {
  enum class State { NotBegun, AtWork, Done, DoneWithErrors, Failed };
  using Seconds = std::chrono::duration<double>;

  std::string name;
  State state = State::NotBegun;
  std::int64_t announced = 0;  // rows that the source said it has
  std::int64_t rows = 0;       // handled
  Seconds conversion_time{};   // relationships among it
  std::vector<ReportedMessage> messages = {};
  std::optional<ReportedMessage> verification = {};  // none: it was not compared
  Seconds verification_time{};
};

/// What a run was to do and what came of it. It holds no password.
struct RunReport {
  using Time = std::chrono::system_clock::time_point;

  std::string task = "Conversion";
  std::string source = {};       // "MySQL, host:3306, database shop"
  std::string destination = {};  // likewise
  std::vector<std::pair<std::string, std::string>> options = {};  // name and value
  Time started = {};
  Time ended = {};           // or, of a run that did not come to its end, as far as it is told
  bool is_complete = false;  // it came to its end
  bool succeeded = false;    // and nothing failed
  std::vector<ReportedTable> tables = {};
  std::vector<ReportedMessage> messages = {};  // that belong to no table
};

/// One self-contained page: readable on a phone, printable, without scripts.
std::string HtmlReport(const RunReport& report);
/// The same for machines: one object.
std::string JsonReport(const RunReport& report);

/// True for a file name whose ending says which kind of report goes there: .html, .htm or .json.
bool IsReportName(std::string_view path);
/// Puts the report into a file of such a name, which it replaces as a whole, readable by its owner
/// alone. Throws RunTimeError: 76 no such folder, 70 not allowed, 57 otherwise.
void SaveReport(const std::string& path, const RunReport& report);

/// What a state is called in either kind of report.
std::string_view NameOf(ReportedTable::State state);
std::int64_t RowsOf(const RunReport& report);
/// 0 where too little time has passed for a rate.
std::int64_t RowsPerSecond(const ReportedTable& table);

}  // namespace dorvane
