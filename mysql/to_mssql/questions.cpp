#include "mysql/to_mssql/questions.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cstdlib>

#include "endpoint/names.h"

namespace dorvane::to_mssql {

namespace {

bool Exists(ado::Connection& source, const ado::TableName& table, const std::string& condition) {
  ado::Recordset answer = source.Execute(
      fmt::format("select exists(select 1 from {} where {})", MySqlTable(table), condition));
  return !answer.AtEnd() && answer.Field(0).Text() == "1";
}

}  // namespace

bool HasNegatives(ado::Connection& source, const ado::TableName& table, const std::string& column) {
  return Exists(source, table, MySqlName(column) + " < 0");
}

bool ExceedsDigits(ado::Connection& source, const ado::TableName& table, const std::string& column,
                   int digits) {
  const std::string limit = "1" + std::string(static_cast<std::size_t>(digits), '0');
  return Exists(source, table, fmt::format("abs({}) >= {}", MySqlName(column), limit));
}

bool RepeatsNulls(ado::Connection& source, const ado::TableName& table, const NameList& columns) {
  std::string list;
  std::string has_null;
  for (const std::string& column : columns) {
    list += (list.empty() ? "" : ", ") + MySqlName(column);
    has_null += (has_null.empty() ? "" : " or ") + MySqlName(column) + " is null";
  }
  return Exists(source, table, has_null + " group by " + list + " having count(*) > 1");
}

std::vector<std::int64_t> NumbersOf(ado::Connection& source, const ado::TableName& table,
                                    const std::vector<std::string>& expressions) {
  std::vector<std::int64_t> numbers;
  if (expressions.empty()) return numbers;
  ado::Recordset answer = source.Execute(
      fmt::format("select {} from {}", fmt::join(expressions, ", "), MySqlTable(table)));
  for (std::size_t i = 0; i < expressions.size(); ++i) {
    numbers.push_back(std::atoll(answer.Field(i).Text().c_str()));
  }
  return numbers;
}

}  // namespace dorvane::to_mssql
