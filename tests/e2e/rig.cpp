#include "tests/e2e/rig.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "platform/text/code_page.h"

namespace dorvane::test {

namespace {

void Prepare(IDatabase& endpoint, int port, const std::string& user, const std::string& database,
             int idle_limit) {
  endpoint.SetSettings({.server = "127.0.0.1",
                        .port = port,
                        .user_id = user,
                        .password = "secret",
                        .database = database,
                        .idle_limit = idle_limit});
}

std::string Trimmed(std::string text) {
  const auto is_blank = [](char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; };
  text.erase(text.begin(), std::ranges::find_if_not(text, is_blank));
  while (!text.empty() && is_blank(text.back())) text.pop_back();
  return text;
}

}  // namespace

Rig& Rig::Get() {
  static Rig rig;
  return rig;
}

std::string Rig::NewMsSqlDatabase() {
  std::string name = fmt::format("db{}", ++databases_);
  ms_sql_.Script("create database " + name + "\ngo\n", "master");
  return name;
}

std::string Rig::NewDatabases() {
  std::string name = NewMsSqlDatabase();
  my_sql_.Query("create database " + name + " character set utf8mb4");
  return name;
}

std::string Rig::MsSqlValue(const std::string& query, const std::string& database) const {
  ado::Connection connection(ado::OdbcProvider());
  connection.Open(MsSqlSettings(database));
  ado::Recordset rows = connection.Execute(query);
  std::string text;
  for (; !rows.AtEnd(); rows.MoveNext()) text += rows.Field(0).Text() + "\n";
  return Trimmed(text);
}

std::string Rig::MySqlValue(const std::string& query, const std::string& database) const {
  return Trimmed(my_sql_.Query(query, database));
}

ado::ConnectionSettings Rig::MsSqlSettings(const std::string& database) const {
  return {.server = "127.0.0.1",
          .port = ms_sql_.Port(),
          .user_id = "sa",
          .password = ms_sql_.Password(),
          .database = database};
}

void WriteSettings(const Job& job, const std::filesystem::path& settings,
                   const std::filesystem::path& log) {
  const bool from_ms_sql = job.source == ServerKind::MsSql;
  PlainEndpoint src(job.source);
  PlainEndpoint dest(from_ms_sql ? ServerKind::MySql : ServerKind::MsSql);
  Prepare(from_ms_sql ? src : dest, job.ms_sql_port ? job.ms_sql_port : Rig::Get().MsSql().Port(),
          job.ms_sql_user, from_ms_sql ? job.source_db : job.dest_db, job.idle_limit);
  Prepare(from_ms_sql ? dest : src, job.my_sql_port ? job.my_sql_port : Rig::Get().MySql().Port(),
          job.my_sql_user, from_ms_sql ? job.dest_db : job.source_db, job.idle_limit);
  src.SetOptions({.copy_table_content = true,
                  .convert_mode = job.mode,
                  .replace_space_with_underscore = job.underscores,
                  .convert_relationships = job.relationships,
                  .verification = job.verification,
                  .types = job.types,
                  .reports = job.reports,
                  .tables_at_once = job.tables_at_once});
  SaveConversionSettings(settings, src, dest, job.tables, log.string());
}

std::vector<std::string> Disagreement(std::vector<std::string> foretold,
                                      std::vector<std::string> told) {
  std::erase_if(foretold, [](const std::string& line) {
    return line.ends_with(" on the destination are dropped");
  });
  for (std::vector<std::string>* lines : {&foretold, &told}) {
    for (std::string& line : *lines) {
      for (const char* number :
           {" 1062 - ", " 1946 - ", " 2627 - ", " -2147217900 - Cannot add or update a child row"})
        line = line.substr(0, line.find(number));
    }
    std::ranges::sort(*lines);
  }
  std::vector<std::string> all;
  std::ranges::set_difference(foretold, told, std::back_inserter(all));
  for (std::string& line : all) line.insert(0, "-");
  const auto in_vain = static_cast<std::ptrdiff_t>(all.size());
  std::ranges::set_difference(told, foretold, std::back_inserter(all));
  std::for_each(all.begin() + in_vain, all.end(), [](std::string& line) { line.insert(0, "+"); });
  return all;
}

std::string ReadLog(const std::filesystem::path& log) {
  std::string lines = text::FromAnsi(ReadFile(log));
  std::erase(lines, '\r');
  return lines;
}

ProgramRun::ProgramRun(const Job& job, std::vector<std::pair<std::string, std::string>> environment,
                       const std::vector<std::string>& options) {
  WriteSettings(job, folder_ / "run.dcs", folder_ / "log.txt");
  // No display, and none of the user's own settings: neither may matter.
  environment.insert(environment.end(), {{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}});
  std::vector<std::string> command = {"/usr/bin/time", "--output=" + (folder_ / "peak").string(),
                                      "--format=%M", DORVANE_PROGRAM};
  command.insert(command.end(), options.begin(), options.end());
  command.push_back(folder_ / "run.dcs");
  process_ = std::make_unique<Process>(command, folder_ / "output", environment);
}

int ProgramRun::Wait(std::chrono::seconds limit) {
  const auto status = process_->Wait(limit);
  EXPECT_TRUE(status) << "the program hangs; its log:\n" << Log();
  return status.value_or(-1);
}

long ProgramRun::PeakKiB() const {
  const std::string lines = Trimmed(ReadFile(folder_ / "peak"));
  return std::stol(lines.substr(lines.rfind('\n') + 1));
}

}  // namespace dorvane::test
