#include <fmt/chrono.h>
#include <fmt/format.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "job/run_report.h"

namespace dorvane {

namespace {

using Json = nlohmann::ordered_json;

/// To the millisecond; more digits would say what no clock here knows.
double Rounded(ReportedTable::Seconds time) {
  return std::round(time.count() * 1000) / 1000;
}

std::string Utc(RunReport::Time time) {
  const std::tm parts = fmt::gmtime(std::chrono::system_clock::to_time_t(time));
  return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", parts);
}

Json Messages(const std::vector<ReportedMessage>& messages) {
  Json list = Json::array();
  for (const ReportedMessage& message : messages) {
    list.push_back({{"kind", message.is_failure ? "error" : "note"}, {"text", message.text}});
  }
  return list;
}

Json Verification(const ReportedTable& table) {
  if (!table.verification) return nullptr;
  return {{"equal", !table.verification->is_failure},
          {"text", table.verification->text},
          {"seconds", Rounded(table.verification_time)}};
}

Json Table(const ReportedTable& table) {
  return {{"name", table.name},
          {"result", NameOf(table.state)},
          {"announced_rows", table.announced},
          {"rows", table.rows},
          {"seconds", Rounded(table.conversion_time)},
          {"rows_per_second", RowsPerSecond(table)},
          {"messages", Messages(table.messages)},
          {"verification", Verification(table)}};
}

}  // namespace

std::string JsonReport(const RunReport& report) {
  Json options = Json::object();
  for (const auto& [name, value] : report.options) options[name] = value;
  Json tables = Json::array();
  for (const ReportedTable& table : report.tables) tables.push_back(Table(table));
  const Json whole{{"task", report.task},
                   {"succeeded", report.succeeded},
                   {"complete", report.is_complete},
                   {"source", report.source},
                   {"destination", report.destination},
                   {"options", options},
                   {"started", Utc(report.started)},
                   {"ended", Utc(report.ended)},
                   {"seconds", Rounded(report.ended - report.started)},
                   {"rows", RowsOf(report)},
                   {"messages", Messages(report.messages)},
                   {"tables", tables}};
  // A server's words need not be UTF-8.
  return whole.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace dorvane
