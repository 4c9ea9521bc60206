#include "tests/conversions/answers.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <sstream>

#include "tests/conversions/table_differences.h"
#include "tests/e2e/rig.h"

namespace dorvane::test {

namespace {

Lines Batches(const Lines& body) {
  Lines batches(1);
  for (const std::string& line : body) {
    if (line == "go") {
      batches.emplace_back();
    } else {
      batches.back() += line + "\n";
    }
  }
  std::erase(batches, "");  // behind the last "go"
  return batches;
}

}  // namespace

std::string Joined(const Lines& lines, std::string_view separator) {
  return fmt::format("{}", fmt::join(lines, separator));
}

Lines LinesOf(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

ado::ConnectionSettings SettingsOf(ServerKind kind, const std::string& database) {
  ado::ConnectionSettings settings = Rig::Get().MsSqlSettings(database);
  if (kind == ServerKind::MySql) {
    settings.port = Rig::Get().MySql().Port();
    settings.user_id = "root";
  }
  return settings;
}

std::unique_ptr<ado::Connection> Open(ServerKind kind, const std::string& database) {
  auto connection = std::make_unique<ado::Connection>(
      kind == ServerKind::MySql ? ado::MySqlProvider() : ado::OdbcProvider());
  connection->Open(SettingsOf(kind, database));
  return connection;
}

Lines AnswerOfMsSql(const std::string& database, const Lines& body) {
  Lines rows;
  const auto connection = Open(ServerKind::MsSql, database);
  for (const std::string& batch : Batches(body)) {
    try {
      ado::Recordset answer = connection->Execute(batch);
      do {
        for (; !answer.AtEnd(); answer.MoveNext())
          rows.push_back(Shown(Joined(Cells(answer), "|")));
      } while (answer.NextRecordset());
    } catch (const RunTimeError& error) {
      rows.push_back(Shown("error: " + error.Description()));
    }
  }
  return rows;
}

Lines AnswerOfMySql(const std::string& database, const Lines& body) {
  std::string answer;
  try {
    answer = Rig::Get().MySql().Query(Joined(body), database);
  } catch (const std::runtime_error& error) {
    return {Shown("error: " + std::string(error.what()))};
  }
  Lines rows;
  for (const std::string& line : LinesOf(answer)) rows.push_back(Shown(Replaced(line, "\t", "|")));
  return rows;
}

}  // namespace dorvane::test
