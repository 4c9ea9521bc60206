#include "platform/ado/odbc/driver_catalog.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <array>
#include <set>
#include <string_view>
#include <utility>

#include "platform/ado/odbc/catalog_rows.h"
#include "platform/ado/odbc/described_column.h"
#include "platform/ado/odbc/utf16.h"
#include "platform/text/ascii.h"

namespace dorvane::ado::odbc {

namespace {

using Rows = std::vector<CatalogRow>;

const NameColumns kTable = {"TABLE_NAME", "TABLE_SCHEM"};
const NameColumns kReferringTable = {"FKTABLE_NAME", "FKTABLE_SCHEM"};

/// A name as a catalog function takes it; an empty one stands for any.
class Argument {
 public:
  explicit Argument(std::u16string text) : text_(std::move(text)) {}
  explicit Argument(std::string_view text) : Argument(ToUtf16(text)) {}
  SQLWCHAR* Text() { return text_.empty() ? nullptr : reinterpret_cast<SQLWCHAR*>(text_.data()); }
  SQLSMALLINT Size() const { return text_.empty() ? 0 : SQL_NTS; }

 private:
  std::u16string text_;
};

std::string DefaultSchemaOf(const std::shared_ptr<Logon>& logon) {
  try {
    const Rows rows = ReadCatalog(logon, "select schema_name() as name");
    if (!rows.empty() && !rows.front().Text("name").empty()) return rows.front().Text("name");
  } catch (const ProviderError&) {
    if (logon->IsLost()) throw;
  }
  return "dbo";
}

Rows PrimaryKeyRows(const std::shared_ptr<Logon>& logon, const TableName& table) {
  Argument schema(table.schema);
  Argument name(table.name);
  return ReadCatalog(logon, [&](SQLHANDLE statement) {
    return SQLPrimaryKeysW(statement, nullptr, 0, schema.Text(), schema.Size(), name.Text(),
                           name.Size());
  });
}

Column ToColumn(const CatalogRow& row) {
  Column column =
      DescribeColumn({.name = row.Text("COLUMN_NAME"),
                      .type_name = row.Text("TYPE_NAME"),
                      .type_code = static_cast<SQLSMALLINT>(row.Number("DATA_TYPE")),
                      .size = {row.Number("COLUMN_SIZE"), row.OptionalNumber("DECIMAL_DIGITS")},
                      .is_nullable = row.Number("NULLABLE") != SQL_NO_NULLS,
                      .default_expression = row.OptionalText("COLUMN_DEF")});
  // "int identity", "numeric() identity"
  if (row.Text("TYPE_NAME").ends_with(" identity")) column.identity = Identity();
  return column;
}

/// Rows with the same name in a row belong together: one index or key, its columns in key order.
template <typename Item, typename Begin>
Item& ItemOf(std::vector<Item>& items, const std::string& name, Begin begin) {
  const auto found =
      std::find_if(items.begin(), items.end(), [&](const Item& item) { return item.name == name; });
  if (found != items.end()) return *found;
  items.push_back(begin());
  items.back().name = name;
  return items.back();
}

template <typename Told>
struct Rule {
  Told told;
  RuleType type;
};
constexpr auto kRuleWords =
    std::to_array<Rule<std::string_view>>({{"CASCADE", RuleType::Cascade},
                                           {"SET NULL", RuleType::SetNull},
                                           {"SET DEFAULT", RuleType::SetDefault}});
constexpr auto kRuleNumbers = std::to_array<Rule<int>>({{SQL_CASCADE, RuleType::Cascade},
                                                        {SQL_SET_NULL, RuleType::SetNull},
                                                        {SQL_SET_DEFAULT, RuleType::SetDefault}});

template <typename Table, typename Told>
RuleType ToRule(const Table& rules, const Told& told) {
  for (const auto& rule : rules) {
    if (rule.told == told) return rule.type;
  }
  return RuleType::None;
}

std::string Literal(std::string_view text) {
  return "N'" + text::Doubled(text, '\'') + "'";
}

/// The rules of the keys where the server has a view for them: the catalog function tells many
/// servers' cascades only.
void ReadRules(const std::shared_ptr<Logon>& logon, const std::string& schema,
               std::vector<Key>& keys) {
  std::string names;
  for (const Key& key : keys) names += (names.empty() ? "" : ", ") + Literal(key.name);
  const Rows rows =
      ReadCatalog(logon,
                  "select CONSTRAINT_NAME, DELETE_RULE, UPDATE_RULE"
                  " from INFORMATION_SCHEMA.REFERENTIAL_CONSTRAINTS where CONSTRAINT_SCHEMA = " +
                      Literal(schema) + " and CONSTRAINT_NAME in (" + names + ")");
  for (const CatalogRow& row : rows) {
    const auto key = std::ranges::find(keys, row.Text("CONSTRAINT_NAME"), &Key::name);
    if (key == keys.end()) continue;
    key->delete_rule = ToRule(kRuleWords, row.Text("DELETE_RULE"));
    key->update_rule = ToRule(kRuleWords, row.Text("UPDATE_RULE"));
  }
}

void SortByKeyOrder(Rows& rows, const std::string& name_column, const std::string& order_column) {
  std::stable_sort(rows.begin(), rows.end(), [&](const auto& a, const auto& b) {
    return std::pair(a.Text(name_column), a.Number(order_column)) <
           std::pair(b.Text(name_column), b.Number(order_column));
  });
}

/// A driver may give the rows of a key twice.
template <typename Item>
bool HasColumn(const std::vector<Item>& columns, const Item& column) {
  return std::ranges::find(columns, column) != columns.end();
}

}  // namespace

DriverCatalog::DriverCatalog(std::shared_ptr<Logon> logon)
    : logon_(std::move(logon)), default_schema_(DefaultSchemaOf(logon_)) {}

TableName DriverCatalog::NameIn(const std::string& schema, std::string name) const {
  return {schema == default_schema_ ? std::string() : schema, std::move(name)};
}

std::vector<TableInfo> DriverCatalog::Tables() const {
  Argument every_name(u"%");
  const Rows rows = ReadCatalog(logon_, [&](SQLHANDLE statement) {
    return SQLTablesW(statement, nullptr, 0, nullptr, 0, every_name.Text(), every_name.Size(),
                      nullptr, 0);
  });
  static constexpr auto kSystemSchemas =
      std::to_array<std::string_view>({"sys", "INFORMATION_SCHEMA"});
  std::vector<TableInfo> tables;
  for (const CatalogRow& row : rows) {
    const std::string schema = row.Text("TABLE_SCHEM");
    TableInfo table = {NameIn(schema, row.Text("TABLE_NAME")), row.Text("TABLE_TYPE")};
    const bool is_system = std::ranges::find(kSystemSchemas, schema) != kSystemSchemas.end();
    if (is_system && table.type == "TABLE") table.type = "SYSTEM TABLE";
    tables.push_back(std::move(table));
  }
  std::ranges::stable_partition(tables, [](const TableInfo& table) { return table.name.IsBare(); });
  return tables;
}

std::vector<Column> DriverCatalog::Columns(const TableName& table) const {
  Argument schema(AsPattern(table.schema));
  Argument name(AsPattern(table.name));
  Rows rows = ReadCatalog(logon_, [&](SQLHANDLE statement) {
    return SQLColumnsW(statement, nullptr, 0, schema.Text(), schema.Size(), name.Text(),
                       name.Size(), nullptr, 0);
  });
  rows = RowsOfTable(std::move(rows), kTable, table, default_schema_);
  std::ranges::stable_sort(rows, {},
                           [](const CatalogRow& row) { return row.Number("ORDINAL_POSITION"); });
  std::vector<Column> columns;
  for (const CatalogRow& row : rows) columns.push_back(ToColumn(row));
  return columns;
}

std::vector<Key> DriverCatalog::PrimaryKey(const TableName& table) const {
  Rows rows = RowsOfTable(PrimaryKeyRows(logon_, table), kTable, table, default_schema_);
  SortByKeyOrder(rows, "PK_NAME", "KEY_SEQ");
  std::vector<Key> keys;
  for (const CatalogRow& row : rows) {
    Key& key = ItemOf(keys, row.Text("PK_NAME"), [] { return Key(); });
    KeyColumn column{row.Text("COLUMN_NAME"), ""};
    if (!HasColumn(key.columns, column)) key.columns.push_back(std::move(column));
  }
  return keys;
}

std::vector<Key> DriverCatalog::ForeignKeys(const TableName& table) const {
  Argument schema(table.schema);
  Argument name(table.name);
  Rows rows = ReadCatalog(logon_, [&](SQLHANDLE statement) {
    return SQLForeignKeysW(statement, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0, schema.Text(),
                           schema.Size(), name.Text(), name.Size());
  });
  rows = RowsOfTable(std::move(rows), kReferringTable, table, default_schema_);
  SortByKeyOrder(rows, "FK_NAME", "KEY_SEQ");
  std::vector<Key> keys;
  for (const CatalogRow& row : rows) {
    Key& key = ItemOf(keys, row.Text("FK_NAME"), [&] {
      return Key{.name = {},
                 .type = KeyType::Foreign,
                 .related_table = NameIn(row.Text("PKTABLE_SCHEM"), row.Text("PKTABLE_NAME")),
                 .delete_rule = ToRule(kRuleNumbers, row.Number("DELETE_RULE")),
                 .update_rule = ToRule(kRuleNumbers, row.Number("UPDATE_RULE")),
                 .columns = {}};
    });
    KeyColumn column{row.Text("FKCOLUMN_NAME"), row.Text("PKCOLUMN_NAME")};
    if (!HasColumn(key.columns, column)) key.columns.push_back(std::move(column));
  }
  if (keys.empty()) return keys;
  try {
    ReadRules(logon_, rows.front().Text("FKTABLE_SCHEM"), keys);
  } catch (const ProviderError&) {
    if (logon_->IsLost()) throw;
  }
  return keys;
}

std::vector<Index> DriverCatalog::Indexes(const TableName& table) const {
  Argument schema(table.schema);
  Argument name(table.name);
  Rows rows = ReadCatalog(logon_, [&](SQLHANDLE statement) {
    return SQLStatisticsW(statement, nullptr, 0, schema.Text(), schema.Size(), name.Text(),
                          name.Size(), SQL_INDEX_ALL, SQL_QUICK);
  });
  rows = RowsOfTable(std::move(rows), kTable, table, default_schema_);
  std::set<std::string> primary_keys;
  for (const Key& key : PrimaryKey(table)) primary_keys.insert(key.name);
  std::vector<Index> indexes;
  for (const CatalogRow& row : rows) {
    if (row.Number("TYPE") == SQL_TABLE_STAT) continue;
    const std::string index_name = row.Text("INDEX_NAME");
    Index& index = ItemOf(indexes, index_name, [&] {
      Index fresh;
      fresh.primary_key = primary_keys.contains(index_name);
      fresh.unique = row.Number("NON_UNIQUE") == 0;
      return fresh;
    });
    std::string column = row.Text("COLUMN_NAME");
    if (!HasColumn(index.columns, column)) index.columns.push_back(std::move(column));
  }
  return indexes;
}

std::vector<Key> DriverCatalog::Keys(const TableName& table) const {
  std::vector<Key> keys = PrimaryKey(table);
  for (Key& key : ForeignKeys(table)) keys.push_back(std::move(key));
  return keys;
}

}  // namespace dorvane::ado::odbc
