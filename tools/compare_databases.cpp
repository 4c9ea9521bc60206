// compare_databases PORT PASSWORD FIRST LAST [exact]: compares the rows of two databases of the
// practice SQL Server. Exit status 0 when they hold the same but for what the way over MySQL cannot
// keep, which is nothing in the exact types.

#include <fmt/format.h>

#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>

#include "platform/ado/connection.h"
#include "tools/compare.h"

namespace {

dorvane::ado::ConnectionSettings SettingsOf(char** arguments, const char* database) {
  return {.server = "127.0.0.1",
          .port = std::atoi(arguments[1]),
          .user_id = "sa",
          .password = arguments[2],
          .database = database};
}

void Print(std::string_view heading, const std::vector<std::string>& lines) {
  if (lines.empty()) return;
  fmt::print("{}\n", heading);
  for (const std::string& line : lines) fmt::print("  {}\n", line);
}

}  // namespace

int main(int argc, char** argv) {
  using dorvane::WayBack;
  const bool is_exact = argc == 6 && std::string_view(argv[5]) == "exact";
  if (argc != 5 && !is_exact) {
    fmt::print(stderr, "usage: compare_databases PORT PASSWORD FIRST LAST [exact]\n");
    return 2;
  }
  try {
    dorvane::ado::Connection first(dorvane::ado::OdbcProvider());
    dorvane::ado::Connection last(dorvane::ado::OdbcProvider());
    first.Open(SettingsOf(argv, argv[3]));
    last.Open(SettingsOf(argv, argv[4]));
    const auto comparison =
        dorvane::CompareDatabases(first, last, is_exact ? WayBack::Exact : WayBack::Classic);
    Print(fmt::format("{} and {}, row by row:", argv[3], argv[4]), comparison.tables);
    Print("Not to be kept on the way over MySQL:", comparison.losses);
    Print("DIFFERENT:", comparison.faults);
    if (is_exact && comparison.faults.empty()) {
      fmt::print("{} tables, every column equal\n", comparison.tables.size());
    }
    return comparison.faults.empty() ? 0 : 1;
  } catch (const std::exception& error) {
    fmt::print(stderr, "compare_databases: {}\n", error.what());
    return 2;
  }
}
