#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/ado/catalog_types.h"
#include "platform/ado/table_name.h"

namespace dorvane::to_mssql {

/// The SQL Server type that loses nothing of a MySQL column's values.
struct ExactType {
  std::string text;         // as it stands in a Create Table statement
  int fraction_digits = 0;  // of the seconds that it keeps
  bool is_text = false;     // a time becomes text
  std::string check = {};   // a condition on its values
  std::string change = {};  // what becomes of the values, behind the column's name
};

/// What the rows must be asked before the type can be chosen, as the expression of a select list
/// that gives a number; empty for a type that needs no question. `table` is unquoted.
std::string QuestionOf(const ado::Column& col, const ado::TableName& table);

/// `answer` is that of the question, 0 where there was none. `dest_name` is the column's name on
/// the destination.
ExactType ExactTypeOf(const ado::Column& col, std::int64_t answer, const std::string& dest_name);

}  // namespace dorvane::to_mssql
