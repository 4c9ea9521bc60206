#include "platform/ado/mysql/metadata.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

#include "platform/ado/mysql/types.h"

namespace dorvane::ado::mysql {

namespace {

constexpr unsigned kBinaryCharset = 63;
constexpr unsigned kBytesPerCharacter = 4;  // lengths of texts are those of utf8mb4
constexpr unsigned kNoFixedDecimals = 31;

struct WireType {
  enum_field_types type;
  std::string_view bytes;  // its name, of bytes where there is a choice
  std::string_view text;
};

constexpr WireType kWireTypes[] = {
    {MYSQL_TYPE_TINY, "tinyint", ""},
    {MYSQL_TYPE_SHORT, "smallint", ""},
    {MYSQL_TYPE_INT24, "mediumint", ""},
    {MYSQL_TYPE_LONG, "int", ""},
    {MYSQL_TYPE_LONGLONG, "bigint", ""},
    {MYSQL_TYPE_YEAR, "year", ""},
    {MYSQL_TYPE_FLOAT, "float", ""},
    {MYSQL_TYPE_DOUBLE, "double", ""},
    {MYSQL_TYPE_DECIMAL, "decimal", ""},
    {MYSQL_TYPE_NEWDECIMAL, "decimal", ""},
    {MYSQL_TYPE_BIT, "bit", ""},
    {MYSQL_TYPE_DATE, "date", ""},
    {MYSQL_TYPE_NEWDATE, "date", ""},
    {MYSQL_TYPE_TIME, "time", ""},
    {MYSQL_TYPE_DATETIME, "datetime", ""},
    {MYSQL_TYPE_TIMESTAMP, "timestamp", ""},
    {MYSQL_TYPE_NULL, "varbinary", "varchar"},
    {MYSQL_TYPE_STRING, "binary", "char"},
    {MYSQL_TYPE_VAR_STRING, "varbinary", "varchar"},
    {MYSQL_TYPE_VARCHAR, "varbinary", "varchar"},
    {MYSQL_TYPE_TINY_BLOB, "tinyblob", "tinytext"},
    {MYSQL_TYPE_BLOB, "blob", "text"},
    {MYSQL_TYPE_MEDIUM_BLOB, "mediumblob", "mediumtext"},
    {MYSQL_TYPE_LONG_BLOB, "longblob", "longtext"},
    {MYSQL_TYPE_JSON, "json", "json"},
};

std::string_view TypeName(const MYSQL_FIELD& field, bool is_text) {
  if ((field.flags & ENUM_FLAG) != 0) return "enum";
  if ((field.flags & SET_FLAG) != 0) return "set";
  const auto* found = std::ranges::find(kWireTypes, field.type, &WireType::type);
  if (found == std::end(kWireTypes)) return "";
  return is_text && !found->text.empty() ? found->text : found->bytes;
}

FieldInfo FromMetadata(const MYSQL_FIELD& field) {
  const bool is_text = field.charsetnr != kBinaryCharset;
  const bool is_unsigned = (field.flags & UNSIGNED_FLAG) != 0;
  const int scale = field.decimals < kNoFixedDecimals ? static_cast<int>(field.decimals) : 0;
  // The length of a decimal counts its point and its sign.
  const int precision =
      static_cast<int>(field.length) - (scale > 0 ? 1 : 0) - (is_unsigned ? 0 : 1);
  const std::int64_t length = is_text ? static_cast<std::int64_t>(field.length / kBytesPerCharacter)
                                      : static_cast<std::int64_t>(field.length);
  return Translate({field.name, field.name_length},
                   {.type = std::string(TypeName(field, is_text)),
                    .is_unsigned = is_unsigned,
                    .is_unicode = is_text,
                    .length = length,
                    .precision = precision,
                    .scale = scale},
                   is_text);
}

bool IsColumnOfTable(const MYSQL_FIELD& field) {
  return field.org_table_length != 0 && field.org_name_length != 0 &&
         std::string_view(field.db, field.db_length) != "information_schema";
}

}  // namespace

std::vector<FieldInfo> DescribeFields(const MYSQL_FIELD* fields, std::size_t count,
                                      const ColumnLookup& columns_of) {
  std::map<std::pair<std::string, std::string>, std::vector<Column>> tables;
  const auto column_of = [&](const MYSQL_FIELD& field) -> const Column* {
    std::pair<std::string, std::string> table = {{field.db, field.db_length},
                                                 {field.org_table, field.org_table_length}};
    auto known = tables.find(table);
    if (known == tables.end()) {
      known = tables.emplace(table, columns_of(table.first, table.second)).first;
    }
    const std::string_view name(field.org_name, field.org_name_length);
    const auto found = std::ranges::find(known->second, name, &Column::name);
    return found == known->second.end() ? nullptr : &*found;
  };

  std::vector<FieldInfo> infos;
  infos.reserve(count);
  for (const MYSQL_FIELD* field = fields; field != fields + count; ++field) {
    const Column* column = IsColumnOfTable(*field) ? column_of(*field) : nullptr;
    if (column == nullptr) {
      infos.push_back(FromMetadata(*field));
      continue;
    }
    infos.push_back(*column);
    infos.back().name.assign(field->name, field->name_length);
  }
  return infos;
}

}  // namespace dorvane::ado::mysql
