#include "mysql/to_mssql/exact_types.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <vector>

#include "endpoint/literal_text.h"
#include "endpoint/names.h"
#include "mysql/to_mssql/literals.h"

namespace dorvane::to_mssql {

namespace {

constexpr std::int64_t kMostBytes = 8000;
constexpr std::int64_t kMostCharacters = 4000;
constexpr std::string_view kLongText = "nvarchar(max)";
constexpr std::string_view kLongBytes = "varbinary(max)";

/// The first word of a declaration.
std::string_view WordOf(const ado::Column& col) {
  const std::string_view declaration = col.server_type;
  return declaration.substr(0, declaration.find_first_of(" (/"));
}

bool IsUnsigned(const ado::Column& col) {
  return col.server_type.find(" unsigned") != std::string::npos;
}

bool IsFlag(const ado::Column& col) {
  return col.server_type.starts_with("tinyint(1)");
}

/// `word`(size), or the long type where that is not enough. A column that holds nothing but empty
/// values still needs a size.
std::string Sized(std::string_view word, std::int64_t size, std::int64_t most,
                  std::string_view long_type) {
  if (size > most) return std::string(long_type);
  return fmt::format("{}({})", word, std::max<std::int64_t>(size, 1));
}

std::string Text(std::int64_t size) {
  return Sized("nvarchar", size, kMostCharacters, kLongText);
}

/// What a character means behind a backslash.
char Unescaped(char c) {
  switch (c) {
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case '0':
      return '\0';
    default:
      return c;
  }
}

/// The members between the quotes of "enum('a','b')".
std::vector<std::string> Members(std::string_view declaration) {
  std::vector<std::string> members;
  bool is_inside = false;
  for (std::size_t i = 0; i < declaration.size(); ++i) {
    const char c = declaration[i];
    const char next = i + 1 < declaration.size() ? declaration[i + 1] : '\0';
    if (!is_inside) {
      is_inside = c == '\'';
      if (is_inside) members.emplace_back();
    } else if (c == '\\') {
      members.back() += Unescaped(next);
      ++i;
    } else if (c != '\'' || next == '\'') {
      members.back() += c;
      if (c == '\'') ++i;
    } else {
      is_inside = false;
    }
  }
  return members;
}

ExactType PlainText(const ado::Column& col, std::int64_t units, const std::string&) {
  if (units <= col.defined_size) {
    const bool is_fixed = WordOf(col) == "char" && col.defined_size > 0;
    return {is_fixed ? fmt::format("nchar({})", col.defined_size) : Text(col.defined_size)};
  }
  std::string text = Text(units);
  return {.text = text,
          .change = fmt::format("became {}, since SQL Server counts some characters twice", text)};
}

ExactType Moment(std::string_view word, const ado::Column& col) {
  return {.text = fmt::format("{}({})", word, col.numeric_scale),
          .fraction_digits = col.numeric_scale};
}

ExactType TimeOfDay(const ado::Column& col, std::int64_t is_beyond, const std::string&) {
  if (is_beyond == 0) return Moment("time", col);
  return {.text = "varchar(17)",
          .fraction_digits = col.numeric_scale,
          .is_text = true,
          .change = "became varchar(17), since it holds times below zero or beyond a day"};
}

ExactType Enumeration(const ado::Column& col, std::int64_t has_none, const std::string& dest_name) {
  std::vector<std::string> members = Members(col.server_type);
  if (has_none != 0) members.emplace_back();
  std::string list;
  for (const std::string& member : members) {
    list += list.empty() ? "" : ", ";
    AppendTextLiteral(list, member);
  }
  return {.text = Text(col.defined_size),
          .check = fmt::format("{} in ({})", MsSqlName(dest_name), list),
          .change = has_none != 0 ? "may be empty, since a row holds none of its members" : ""};
}

ExactType Json(const ado::Column&, std::int64_t has_scalars, const std::string& dest_name) {
  if (has_scalars == 0) {
    return {.text = std::string(kLongText),
            .check = fmt::format("isjson({}) = 1", MsSqlName(dest_name))};
  }
  return {.text = std::string(kLongText),
          .change = "has no check, since SQL Server takes arrays and objects for JSON only"};
}

ExactType Spatial(const ado::Column&, std::int64_t, const std::string&) {
  return {.text = std::string(kLongBytes),
          .change = "became varbinary(max) with the bytes of its values"};
}

/// What a type of MySQL becomes: a text of its own, or what `make` makes of the column.
struct ExactRow {
  std::string_view word;
  std::string_view text = {};
  std::string_view unsigned_text = {};  // where it differs
  ExactType (*make)(const ado::Column& col, std::int64_t answer,
                    const std::string& dest_name) = nullptr;
  std::string_view question = {};  // {0}: the column, {1}: its size
};

// No column of a relationship may become a bit alone, since both sides must be of one type.
constexpr auto kRows = std::to_array<ExactRow>({
    {"tinyint", "smallint", "tinyint"},
    {"smallint", "smallint", "int"},
    {"mediumint", "int"},
    {"int", "int", "bigint"},
    {"bigint", "bigint", "decimal(20,0)"},
    {"year", "smallint"},
    {"float", "real"},
    {"double", "float"},
    {"decimal", "", "",
     [](const ado::Column& col, std::int64_t, const std::string&) -> ExactType {
       return {fmt::format("decimal({},{})", col.precision, col.numeric_scale)};
     }},
    {"bit", "", "",
     [](const ado::Column& col, std::int64_t, const std::string&) -> ExactType {
       const bool is_flag = col.type == ado::DataType::Boolean;
       return {is_flag ? "bit" : fmt::format("binary({})", col.defined_size)};
     }},
    {"date", "date"},
    {"datetime", "", "",
     [](const ado::Column& col, std::int64_t, const std::string&) {
       return Moment("datetime2", col);
     }},
    {"timestamp", "", "",
     [](const ado::Column& col, std::int64_t, const std::string&) {
       return Moment("datetime2", col);
     }},
    {"time", "", "", TimeOfDay, "max({0} < '00:00:00' or {0} >= '24:00:00')"},
    {"char", "", "", PlainText,
     "max(if(char_length({0}) > {1} div 2, length(convert({0} using utf16)) div 2, 0))"},
    {"varchar", "", "", PlainText,
     "max(if(char_length({0}) > {1} div 2, length(convert({0} using utf16)) div 2, 0))"},
    {"tinytext", kLongText},
    {"text", kLongText},
    {"mediumtext", kLongText},
    {"longtext", kLongText},
    {"json", "", "", Json, "max(json_type({0}) not in ('OBJECT', 'ARRAY'))"},
    {"enum", "", "", Enumeration, "max({0} + 0 = 0)"},
    {"set", "", "",
     [](const ado::Column& col, std::int64_t, const std::string&) -> ExactType {
       return {Text(col.defined_size)};
     }},
    {"binary", "", "",
     [](const ado::Column& col, std::int64_t, const std::string&) -> ExactType {
       return {Sized("binary", col.defined_size, kMostBytes, kLongBytes)};
     }},
    {"varbinary", "", "",
     [](const ado::Column& col, std::int64_t, const std::string&) -> ExactType {
       return {Sized("varbinary", col.defined_size, kMostBytes, kLongBytes)};
     }},
    {"tinyblob", kLongBytes},
    {"blob", kLongBytes},
    {"mediumblob", kLongBytes},
    {"longblob", kLongBytes},
    {"geometry", "", "", Spatial},
    {"point", "", "", Spatial},
    {"linestring", "", "", Spatial},
    {"polygon", "", "", Spatial},
    {"multipoint", "", "", Spatial},
    {"multilinestring", "", "", Spatial},
    {"multipolygon", "", "", Spatial},
    {"geometrycollection", "", "", Spatial},
    {"geomcollection", "", "", Spatial},
});

const ExactRow* RowOf(const ado::Column& col) {
  const auto* found = std::ranges::find(kRows, WordOf(col), &ExactRow::word);
  return found != kRows.end() ? found : nullptr;
}

/// Characters beyond 16 bits, of which only Unicode text has any.
bool MayCountTwice(const ado::Column& col) {
  const bool is_unicode = col.type == ado::DataType::WChar || col.type == ado::DataType::VarWChar;
  return is_unicode && col.defined_size <= kMostCharacters;
}

bool IsBinary(ado::DataType type) {
  using enum ado::DataType;
  return type == Binary || type == VarBinary || type == LongVarBinary;
}

}  // namespace

std::string QuestionOf(const ado::Column& col, const ado::TableName& table) {
  const std::string name = MySqlName(col.name);
  if (IsFlag(col)) {
    return fmt::format(
        "coalesce(max({0} not in (0, 1)), 0) or (select count(*) from "
        "information_schema.key_column_usage "
        "where table_schema = database() and ((referenced_table_name is not null and "
        "table_name = {1} and column_name = {2}) or (referenced_table_name = {1} and "
        "referenced_column_name = {2})))",
        name, HexCode(table.name), HexCode(col.name));
  }
  const ExactRow* row = RowOf(col);
  if (row == nullptr || row->question.empty()) return {};
  if (row->make == PlainText && !MayCountTwice(col)) return {};
  return fmt::format(fmt::runtime(row->question), name, col.defined_size);
}

ExactType ExactTypeOf(const ado::Column& col, std::int64_t answer, const std::string& dest_name) {
  if (IsFlag(col) && answer == 0) return {"bit"};
  const ExactRow* row = RowOf(col);
  // A type that only some servers have.
  if (row == nullptr)
    return {IsBinary(col.type) ? std::string(kLongBytes) : Text(col.defined_size)};
  if (row->make != nullptr) return row->make(col, answer, dest_name);
  const bool is_other = IsUnsigned(col) && !row->unsigned_text.empty();
  return {std::string(is_other ? row->unsigned_text : row->text)};
}

}  // namespace dorvane::to_mssql
