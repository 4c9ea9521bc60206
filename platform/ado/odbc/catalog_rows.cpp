#include "platform/ado/odbc/catalog_rows.h"

#include <fmt/format.h>
#include <sqlext.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <set>
#include <utility>

#include "platform/ado/odbc/result_reader.h"
#include "platform/ado/odbc/utf16.h"
#include "platform/text/ascii.h"

namespace dorvane::ado::odbc {

namespace {

/// Catalog rows hold text and small numbers only.
std::optional<std::string> AsText(const Value& value) {
  if (const auto* text = std::get_if<std::string_view>(&value)) return std::string(*text);
  if (const auto* number = std::get_if<std::int64_t>(&value)) return fmt::to_string(*number);
  if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "1" : "0";
  return std::nullopt;
}

struct RenamedColumn {
  std::string_view odbc2;
  std::string_view odbc3;
};
constexpr auto kRenamed = std::to_array<RenamedColumn>({
    {"TABLE_OWNER", "TABLE_SCHEM"},
    {"TABLE_QUALIFIER", "TABLE_CAT"},
    {"FKTABLE_OWNER", "FKTABLE_SCHEM"},
    {"PKTABLE_OWNER", "PKTABLE_SCHEM"},
    {"PRECISION", "COLUMN_SIZE"},
    {"SCALE", "DECIMAL_DIGITS"},
    {"SEQ_IN_INDEX", "ORDINAL_POSITION"},
});

/// The name that ODBC 3 gives to what some drivers still call by its ODBC 2 name.
std::string Odbc3Name(const std::string& name) {
  const auto* found = std::ranges::find(kRenamed, name, &RenamedColumn::odbc2);
  return found == kRenamed.end() ? name : std::string(found->odbc3);
}

}  // namespace

std::optional<std::string> CatalogRow::OptionalText(const std::string& name) const {
  const auto found = values_.find(name);
  if (found == values_.end()) return std::nullopt;
  return found->second;
}

std::string CatalogRow::Text(const std::string& name) const {
  return OptionalText(name).value_or(std::string());
}

std::optional<int> CatalogRow::OptionalNumber(const std::string& name) const {
  const std::string text = Text(name);
  int number = 0;
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
  if (parsed.ec != std::errc()) return std::nullopt;
  return number;
}

namespace {

OdbcResultReader Open(const std::shared_ptr<Logon>& logon, const CatalogCall& call) {
  return logon->Watch([&] {
    Statement statement = logon->NewStatement();
    const SQLRETURN executed = call(statement.Get());
    return OdbcResultReader(logon, std::move(statement), executed);
  });
}

CatalogCall CallOf(std::string_view sql) {
  return [text = ToUtf16(sql)](SQLHANDLE statement) mutable {
    return SQLExecDirectW(statement, reinterpret_cast<SQLWCHAR*>(text.data()),
                          static_cast<SQLINTEGER>(text.size()));
  };
}

}  // namespace

std::vector<CatalogRow> ReadCatalog(const std::shared_ptr<Logon>& logon, const CatalogCall& call) {
  OdbcResultReader reader = Open(logon, call);
  std::vector<std::string> names;
  for (const FieldInfo& field : reader.Fields()) names.push_back(Odbc3Name(field.name));
  std::vector<CatalogRow> rows;
  RowBlock block;
  while (reader.Read(block)) {
    for (std::size_t row = 0; row < block.Rows(); ++row) {
      std::map<std::string, std::string> values;
      for (std::size_t i = 0; i < names.size(); ++i) {
        if (auto text = AsText(block.Row(row)[i])) values.emplace(names[i], std::move(*text));
      }
      rows.emplace_back(std::move(values));
    }
  }
  return rows;
}

std::vector<CatalogRow> ReadCatalog(const std::shared_ptr<Logon>& logon, std::string_view sql) {
  return ReadCatalog(logon, CallOf(sql));
}

std::optional<std::string> QueryRow::OptionalText(std::size_t i) const {
  return AsText(values_[i]);
}

std::int64_t QueryRow::Number(std::size_t i) const {
  if (const auto* flag = std::get_if<bool>(&values_[i])) return *flag ? 1 : 0;
  const auto* number = std::get_if<std::int64_t>(&values_[i]);
  return number != nullptr ? *number : 0;
}

void ForEachRow(const std::shared_ptr<Logon>& logon, std::string_view sql,
                const std::function<void(const QueryRow& row)>& use) {
  OdbcResultReader reader = Open(logon, CallOf(sql));
  RowBlock block;
  while (reader.Read(block)) {
    for (std::size_t row = 0; row < block.Rows(); ++row) use(QueryRow(block.Row(row)));
  }
}

std::vector<CatalogRow> RowsOfTable(std::vector<CatalogRow> rows, const NameColumns& columns,
                                    const TableName& table, const std::string& default_schema) {
  std::set<std::string> names;
  for (const CatalogRow& row : rows) {
    std::string name = row.Text(columns.table);
    if (text::EqualsIgnoringCase(name, table.name)) names.insert(std::move(name));
  }
  const bool is_there = names.contains(table.name) || names.size() == 1;
  if (!is_there) return {};
  const std::string name = names.contains(table.name) ? table.name : *names.begin();
  std::erase_if(rows, [&](const auto& row) { return row.Text(columns.table) != name; });
  std::string schema = table.IsBare() ? default_schema : table.schema;
  const bool has_schema = std::ranges::any_of(
      rows, [&](const auto& row) { return row.Text(columns.schema) == schema; });
  if (!has_schema && table.IsBare()) schema = rows.front().Text(columns.schema);
  std::erase_if(rows, [&](const auto& row) { return row.Text(columns.schema) != schema; });
  return rows;
}

std::u16string AsPattern(std::string_view name) {
  std::u16string pattern = ToUtf16(name);
  for (char16_t& unit : pattern) {
    if (std::u16string_view(u"%_[\\").find(unit) != std::u16string_view::npos) unit = u'_';
  }
  return pattern;
}

}  // namespace dorvane::ado::odbc
