#include "job/run_report.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include "platform/files/replace_file.h"
#include "platform/text/ascii.h"

namespace dorvane {

namespace {

constexpr std::array<std::string_view, 5> kStateNames{"not begun", "not finished", "done",
                                                      "done, with errors", "failed"};

struct Format {
  std::string_view ending;
  std::string (*write)(const RunReport& report);
};
constexpr std::array kFormats{Format{".html", HtmlReport}, Format{".htm", HtmlReport},
                              Format{".json", JsonReport}};

const Format* FormatOf(std::string_view path) {
  const std::string ending = text::ToLower(std::filesystem::path(path).extension().string());
  const auto format = std::ranges::find(kFormats, ending, &Format::ending);
  return format != kFormats.end() ? &*format : nullptr;
}

}  // namespace

bool IsReportName(std::string_view path) {
  return FormatOf(path) != nullptr;
}

void SaveReport(const std::string& path, const RunReport& report) {
  files::ReplaceFile(path, FormatOf(path)->write(report), files::kOwnerOnly);
}

std::string_view NameOf(ReportedTable::State state) {
  return kStateNames[static_cast<std::size_t>(state)];
}

std::int64_t RowsOf(const RunReport& report) {
  std::int64_t rows = 0;
  for (const ReportedTable& table : report.tables) rows += table.rows;
  return rows;
}

std::int64_t RowsPerSecond(const ReportedTable& table) {
  constexpr ReportedTable::Seconds kShortest{0.001};
  if (table.conversion_time < kShortest) return 0;
  return static_cast<std::int64_t>(static_cast<double>(table.rows) / table.conversion_time.count());
}

}  // namespace dorvane
