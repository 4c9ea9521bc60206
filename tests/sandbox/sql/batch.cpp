#include "tests/sandbox/sql/batch.h"

#include <unistd.h>

#include <atomic>

#include "sandbox/values/convert.h"

namespace sandbox::testing {

std::vector<std::string> Result::Names() const {
  std::vector<std::string> names;
  for (const ColumnInfo& column : columns) names.push_back(column.name);
  return names;
}

std::string RowText(const std::vector<std::string>& row) {
  std::string text;
  for (std::size_t i = 0; i < row.size(); ++i) text += (i ? "|" : "") + row[i];
  return text;
}

std::string Result::Text() const {
  std::string text;
  for (const auto& row : rows) text += (text.empty() ? "" : ";") + RowText(row);
  return text;
}

void Answer::Columns(const std::vector<ColumnInfo>& columns) {
  results.push_back({columns, {}});
}

void Answer::Row(std::span<const Value> values) {
  Result& result = results.back();
  auto& row = result.rows.emplace_back();
  for (std::size_t i = 0; i < values.size(); ++i) {
    row.push_back(ValueText(values[i], result.columns[i].type));
  }
}

std::string Answer::Numbers() const {
  std::string text;
  for (const ServerMessage& message : messages) {
    text += (text.empty() ? "" : " ") + std::to_string(message.number);
  }
  return text;
}

BatchTest::BatchTest() {
  static std::atomic<int> number{0};
  folder = std::filesystem::temp_directory_path() /
           ("sandbox_sql_" + std::to_string(getpid()) + "_" + std::to_string(++number));
  engine = OpenEngine(folder, false);
  session = engine->OpenSession("sa");
  Must("create database db");
  EXPECT_TRUE(session->UseDatabase("db"));
}

BatchTest::~BatchTest() {
  session.reset();
  engine.reset();
  std::filesystem::remove_all(folder);
}

Answer BatchTest::Run(EngineSession& in, std::string_view batch) {
  Answer answer;
  in.Execute(batch, answer);
  return answer;
}

void BatchTest::Must(std::string_view batch) {
  const Answer answer = Run(batch);
  EXPECT_EQ(answer.Numbers(), "") << answer.FirstText() << "\nin: " << batch;
}

std::string BatchTest::Query(std::string_view query) {
  const Answer answer = Run(query);
  EXPECT_EQ(answer.Numbers(), "") << answer.FirstText() << "\nin: " << query;
  EXPECT_EQ(answer.results.size(), 1u) << query;
  return answer.Rows();
}

std::unique_ptr<EngineSession> BatchTest::NewSession(std::string_view login) {
  auto opened = engine->OpenSession(login);
  EXPECT_TRUE(opened->UseDatabase("db"));
  return opened;
}

void BatchTest::Reopen() {
  session.reset();
  engine.reset();
  engine = OpenEngine(folder, false);
  session = NewSession();
}

}  // namespace sandbox::testing
