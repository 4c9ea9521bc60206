#include "mssql/to_mysql/key_columns.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

#include "endpoint/names.h"
#include "mssql/to_mysql/cures.h"

namespace dorvane::to_mysql {

namespace {

// A key's columns have this many bytes in all, and a character up to four of them.
constexpr std::int64_t kMostKeyBytes = 3072;
constexpr std::int64_t kBytesOfCharacter = 4;
constexpr std::int64_t kBytesOfFixedType = 20;
constexpr std::int64_t kBytesOfGuid = 16;

/// What a column takes up in a key.
struct KeyPart {
  bool is_long = false;     // takes no more than its length in the statement, as TEXT and BLOB do
  std::int64_t unit = 1;    // bytes that a unit of its length takes
  std::int64_t length = 0;  // of the whole column, in such units
};

KeyPart PartOf(const ado::Column& column, const ColumnDefinition& definition) {
  const std::string_view type = definition.type;
  const bool is_varchar = definition.facts.is_exact && type.starts_with("VARCHAR(");
  const bool is_varbinary = definition.facts.is_exact && type.starts_with("VARBINARY(");
  const bool is_long = IsLongType(type) || is_varchar || is_varbinary;
  if (column.type == ado::DataType::Guid) return {is_long, 1, kBytesOfGuid};
  const bool is_text = type == "Text" || type == "LONGTEXT" || is_varchar;
  if (is_long && !is_text) return {is_long, 1, column.defined_size};
  if (column.defined_size == 0) return {is_long, 1, kBytesOfFixedType};
  return {is_long, kBytesOfCharacter, column.defined_size};
}

/// Long columns share what the others leave, each in turn taking no more than it needs.
std::vector<std::int64_t> LengthsOf(const std::vector<KeyPart>& parts) {
  std::int64_t left = kMostKeyBytes;
  for (const KeyPart& part : parts) left -= part.is_long ? 0 : part.unit * part.length;
  std::int64_t sharing = std::ranges::count(parts, true, &KeyPart::is_long);
  std::vector<std::int64_t> lengths;
  for (const KeyPart& part : parts) {
    if (!part.is_long) {
      lengths.push_back(0);
      continue;
    }
    const std::int64_t most = std::max<std::int64_t>(1, left / sharing-- / part.unit);
    lengths.push_back(std::min(part.length, most));
    left -= lengths.back() * part.unit;
  }
  return lengths;
}

}  // namespace

KeyColumns PlainKeyColumns(const std::vector<std::string>& dest_names) {
  KeyColumns result;
  for (const std::string& name : dest_names) {
    result.text += (result.text.empty() ? "" : ",") + MySqlName(name);
  }
  return result;
}

KeyColumns KeyColumnsWithLengths(const std::vector<std::string>& dest_names,
                                 const ado::Index& index, const std::vector<ado::Column>& columns,
                                 const TableDefinition& table) {
  std::vector<KeyPart> parts;
  for (const std::string& name : index.columns) {
    const auto column = std::ranges::find(columns, name, &ado::Column::name);
    const ColumnDefinition* definition = table.Find(name);
    const bool is_known = column != columns.end() && definition != nullptr;
    parts.push_back(is_known ? PartOf(*column, *definition) : KeyPart());
  }
  const std::vector<std::int64_t> lengths = LengthsOf(parts);
  KeyColumns result;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    result.text += (i == 0 ? "" : ",") + MySqlName(dest_names[i]);
    if (!parts[i].is_long) continue;
    result.text += fmt::format("({})", lengths[i]);
    if (lengths[i] < parts[i].length) result.is_whole = false;
  }
  return result;
}

}  // namespace dorvane::to_mysql
