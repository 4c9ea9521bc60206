#include "tests/conversions/script_run.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <thread>

#include "app/preview.h"
#include "app/unattended_listener.h"
#include "app/unattended_run.h"
#include "endpoint/names.h"
#include "mssql/mssql_database.h"
#include "mysql/mysql_database.h"
#include "tests/conversions/answers.h"
#include "tests/conversions/order.h"
#include "tests/conversions/table_differences.h"
#include "tests/e2e/rig.h"
#include "tests/support/planned_endpoint.h"

namespace dorvane::test {

namespace {

/// What a log says beyond the frame that every run has.
Lines RemarksIn(const std::string& log) {
  static const std::regex frame(
      "|#+ .*|Conversion (started|ended) at: .*|Converting table '.*|Done!|Done, with errors\\.|"
      "Note - [0-9,]+ tables?, .* in .*");
  Lines lines = LinesOf(log);
  std::erase_if(lines, [](const std::string& line) { return std::regex_match(line, frame); });
  return lines;
}

/// Statements, those of a file of the project in place of the line that names it.
Lines WithoutFiles(const Lines& body) {
  constexpr std::string_view kFile = "from file ";
  Lines statements;
  for (const std::string& line : body) {
    const bool is_file = line.starts_with(kFile);
    const Lines lines =
        is_file ? LinesOf(ReadFile(PROJECT_FOLDER "/" + line.substr(kFile.size()))) : Lines{line};
    statements.insert(statements.end(), lines.begin(), lines.end());
  }
  return statements;
}

/// A statement that creates a table, a column a line; others as they are.
Lines ColumnByColumn(const std::string& statement) {
  static const std::regex next_column(", ?(?=[`\\[])");
  if (!statement.starts_with("Create Table ")) return {statement};
  return LinesOf(std::regex_replace(statement, next_column, ",\n  "));
}

class ScriptRun {
 public:
  ScriptRun(const Script& script, const NamedWay& way, Remembered& first)
      : script_(script), way_(way), first_(first) {
    MakeDatabase("shop");
    if (std::ranges::any_of(script.steps, [](const Step& step) {
          return step.head.find(" back") != std::string::npos;
        })) {
      MakeDatabase("back");
    }
  }

  void DoSteps() {
    for (const Step& step : script_.steps) {
      const Lines body = LinesFor(is_mariadb_, step.body);
      const bool is_for_other_server = body.empty() && !step.body.empty();
      if (!is_for_other_server) Expect(step, Came(step, body));
    }
  }

 private:
  /// A server may take a moment to let go of the connections that were closed last.
  void MakeDatabase(const std::string& name) {
    rig_.MySql().Query(
        fmt::format("set foreign_key_checks = 0; drop database if exists {0}; "
                    "create database {0} character set utf8mb4",
                    name));
    const auto master = Open(ServerKind::MsSql, "master");
    const std::string named = fmt::format("select 1 from sys.databases where name = '{}'", name);
    for (int tries = 0; !master->Execute(named).AtEnd(); ++tries) {
      try {
        master->Execute("drop database " + name);
      } catch (const RunTimeError&) {
        if (tries == 200) throw;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
      }
    }
    master->Execute("create database " + name);
  }

  Lines Came(const Step& step, const Lines& body) {
    static const std::regex query("(mssql|mysql)(?: (.+))?");
    std::smatch parts;
    if (std::regex_match(step.head, parts, query)) {
      const std::string database = parts[2].matched ? parts[2].str() : "shop";
      const Lines statements = WithoutFiles(body);
      return parts[1] == "mssql" ? AnswerOfMsSql(database, statements)
                                 : AnswerOfMySql(database, statements);
    }
    if (step.head == "differences") return Differences();
    if (step.head == "the same in every way") return SinceFirstWay(step.line);
    if (step.head.starts_with("preview")) return Preview(step.head, body);
    return Convert(step.head, body);
  }

  void Expect(const Step& step, Lines came) const {
    Lines expected = LinesFor(is_mariadb_, step.expected);
    if (way_.tables_at_once > 1 && step.head.starts_with("convert")) {
      std::ranges::sort(expected);
      std::ranges::sort(came);
    }
    came = Covered(std::move(came), expected);
    EXPECT_EQ(Joined(came), Joined(expected))
        << script_.file.filename().string() << ":" << step.line << ": " << step.head << " ("
        << way_.name << ")";
    if (came == expected) return;
    if (std::getenv("DORVANE_REWRITE_SCRIPTS") != nullptr) Rewrite(script_, step, came);
  }

  Order OrderOf(const std::string& head, const Lines& body) {
    Order order = ReadOrder(head, body);
    order.job.tables_at_once = way_.tables_at_once;
    if (order.job.tables.empty()) order.job.tables = AllTables(order.job);
    return order;
  }

  NameList AllTables(const Job& job) {
    UnattendedListener host("Listing");
    const auto endpoint = MakeEndpoint(job.source, host);
    endpoint->SetSettings(SettingsOf(job.source, job.source_db));
    return endpoint->GetTablesFromDatabase().value();
  }

  std::unique_ptr<IDatabase> MakeEndpoint(ServerKind kind, IRunHost& host) const {
    const auto planned = [this](auto endpoint) {
      endpoint->plan = way_.plan;
      return endpoint;
    };
    if (kind == ServerKind::MsSql) {
      return planned(std::make_unique<PlannedEndpoint<MsSqlDatabase>>(host));
    }
    return planned(std::make_unique<PlannedEndpoint<MySqlDatabase>>(host));
  }

  static void WriteOrder(const Order& order, const TempFolder& folder) {
    WriteSettings(order.job, folder / "run.dcs", folder / "log.txt");
    std::ofstream(folder / "run.dcs", std::ios::app) << Joined(order.options, "\r\n") << "\r\n";
  }

  HostedEndpointFactory Maker() const {
    return [this](ServerKind kind, IRunHost& host) { return MakeEndpoint(kind, host); };
  }

  /// What `--preview` prints between its first line and its last one.
  Lines Preview(const std::string& head, const Lines& body) {
    const Order order = OrderOf(head, body);
    const TempFolder folder;
    WriteOrder(order, folder);
    testing::internal::CaptureStdout();
    const RunStatus status = RunPreview(folder / "run.dcs", Maker());
    const Lines printed = LinesOf(testing::internal::GetCapturedStdout());
    EXPECT_EQ(static_cast<int>(status), order.status) << script_.name << ": " << head;
    static const std::regex frame(
        "|go|-- What a run would do: .*|-- Nothing would be lost.|-- \\d+ remarks?, see above.");
    Lines lines;
    for (const std::string& line : printed) {
      if (std::regex_match(line, frame)) continue;
      std::ranges::copy(ColumnByColumn(line), std::back_inserter(lines));
    }
    return lines;
  }

  Lines Convert(const std::string& head, const Lines& body) {
    const Order order = OrderOf(head, body);
    last_ = order;
    const TempFolder folder;
    WriteOrder(order, folder);
    Lines foretold;
    if (order.is_previewed) foretold = Rehearse(folder / "run.dcs", folder / "preview.txt");
    const RunStatus status = RunUnattendedConversion(folder / "run.dcs", Maker());
    Lines remarks = RemarksIn(ReadLog(folder / "log.txt"));
    EXPECT_EQ(static_cast<int>(status), order.status) << script_.name << ": " << head;
    if (!order.is_previewed) return remarks;
    Lines told = remarks;
    std::erase_if(told,
                  [](const std::string& line) { return line.find(": Verified: ") != line.npos; });
    for (const std::string& line : Disagreement(std::move(foretold), std::move(told))) {
      remarks.push_back((line[0] == '+' ? "not foretold: " : "foretold in vain: ") +
                        line.substr(1));
    }
    return remarks;
  }

  /// What a preview says, as a run would log it.
  Lines Rehearse(const std::filesystem::path& settings_file, const std::filesystem::path& log) {
    UnattendedListener listener("Conversion");
    files::LineReader file(settings_file);
    const ConversionSettings settings = ReadConversionSettings(file, [&](ServerKind kind) {
      auto endpoint = MakeEndpoint(kind, listener);
      endpoint->SetListener(&listener);
      return endpoint;
    });
    listener.OpenLog(log, settings.form);
    settings.src->RehearseTransfer(*settings.dest, settings.tables, [](std::string_view) {});
    listener.CloseLog();
    return RemarksIn(ReadLog(log));
  }

  Lines Differences() const {
    const Job& job = last_.job;
    const bool to_my_sql = job.source == ServerKind::MsSql;
    const bool is_exact = std::ranges::find(last_.options, "Types=exact") != last_.options.end();
    const auto read = [is_exact](ado::Connection& connection, bool is_my_sql,
                                 const std::string& name) {
      return ReadTable(connection, is_my_sql ? MySqlName(name) : MsSqlName(name), !is_exact);
    };
    const auto source = Open(job.source, job.source_db);
    const auto dest = Open(to_my_sql ? ServerKind::MySql : ServerKind::MsSql, job.dest_db);
    Lines found;
    for (const std::string& name : job.tables) {
      const auto there = [&job](const std::string& text) {
        return job.underscores ? Replaced(text, " ", "_") : text;
      };
      Table table = read(*source, !to_my_sql, name);
      std::ranges::transform(table.columns, table.columns.begin(), there);
      const Lines lines = DifferencesOf(name, table, read(*dest, to_my_sql, there(name)));
      found.insert(found.end(), lines.begin(), lines.end());
    }
    return found;
  }

  /// The rows of the last conversion's tables that the first way did not leave, or left alone.
  Lines SinceFirstWay(int line) {
    const bool to_my_sql = last_.job.source == ServerKind::MsSql;
    const auto dest = Open(to_my_sql ? ServerKind::MySql : ServerKind::MsSql, last_.job.dest_db);
    Lines rows;
    for (const std::string& name : last_.job.tables) {
      ado::Recordset table =
          dest->Execute("select * from " + (to_my_sql ? MySqlName(name) : MsSqlName(name)));
      for (; !table.AtEnd(); table.MoveNext()) {
        rows.push_back(name + ": " + Joined(Cells(table), "|"));
      }
    }
    std::ranges::sort(rows);  // what is not loaded follows what is
    const auto [first, is_first] = first_.try_emplace(line, rows);
    Lines differences;
    std::ranges::set_symmetric_difference(rows, first->second, std::back_inserter(differences));
    for (std::string& row : differences) row = Shown(row.substr(0, 200));
    return differences;
  }

  const Script& script_;
  const NamedWay& way_;
  Remembered& first_;
  Rig& rig_ = Rig::Get();
  const bool is_mariadb_ = rig_.MySql().IsMariaDb();
  Order last_;
};

}  // namespace

const NamedWay& FindWay(const std::string& name) {
  const auto* way = std::ranges::find(kWays, name, &NamedWay::name);
  if (way == std::end(kWays)) throw std::runtime_error("no way of copying rows: " + name);
  return *way;
}

void RunScript(const Script& script, const NamedWay& way, Remembered& first) {
  ScriptRun(script, way, first).DoSteps();
}

}  // namespace dorvane::test
