#include "mysql/to_mssql/questions.h"

#include <fmt/format.h>

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

}  // namespace dorvane::to_mssql
