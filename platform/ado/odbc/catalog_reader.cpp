#include "platform/ado/odbc/catalog_reader.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <array>
#include <set>
#include <string_view>
#include <utility>

#include "platform/ado/odbc/catalog_rows.h"
#include "platform/ado/odbc/default_expression.h"
#include "platform/ado/odbc/server_types.h"
#include "platform/ado/odbc/utf16.h"
#include "platform/text/ascii.h"

namespace dorvane::ado::odbc {

namespace {

using Rows = std::vector<CatalogRow>;

SQLWCHAR* Argument(std::u16string& text) {
  return reinterpret_cast<SQLWCHAR*>(text.data());
}

Rows PrimaryKeyRows(const std::shared_ptr<Logon>& logon, const std::string& table) {
  std::u16string name = ToUtf16(table);
  Rows rows = ReadCatalog(logon, [&](SQLHANDLE statement) {
    return SQLPrimaryKeysW(statement, nullptr, 0, nullptr, 0, Argument(name), SQL_NTS);
  });
  return RowsOfTable(std::move(rows), "TABLE_NAME", "TABLE_SCHEM", table);
}

/// An identifier's text as its values have it.
std::string Braced(std::string guid) {
  constexpr std::size_t kBareSize = 36;
  std::ranges::transform(guid, guid.begin(), [](char c) { return text::ToUpper(c); });
  return guid.size() == kBareSize ? "{" + guid + "}" : guid;
}

/// "(NULL)", which is no other default than none.
bool IsNullLiteral(std::string_view expression) {
  return text::EqualsIgnoringCase(text::Trim(expression, "() "), "null");
}

Column ToColumn(const CatalogRow& row) {
  const ServerType& type =
      FindServerType(row.Text("TYPE_NAME"), static_cast<SQLSMALLINT>(row.Number("DATA_TYPE")));
  Column column;
  static_cast<FieldInfo&>(column) =
      DescribeField(type, {row.Number("COLUMN_SIZE"), row.OptionalNumber("DECIMAL_DIGITS")});
  column.name = row.Text("COLUMN_NAME");
  if (type.is_fixed) column.attributes |= kColumnFixed;
  if (row.Number("NULLABLE") != SQL_NO_NULLS) column.attributes |= kColumnNullable;
  if (const auto expression = row.OptionalText("COLUMN_DEF")) {
    column.default_value = DefaultValue(*expression);
    if (type.fetch_type == FetchType::Guid && column.default_value) {
      column.default_value = Braced(*std::move(column.default_value));
    }
    if (!column.default_value && !IsNullLiteral(*expression)) column.other_default = *expression;
  }
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

RuleType ToRule(std::string_view words) {
  struct Rule {
    std::string_view words;
    RuleType type;
  };
  static constexpr auto kRules = std::to_array<Rule>({{"CASCADE", RuleType::Cascade},
                                                      {"SET NULL", RuleType::SetNull},
                                                      {"SET DEFAULT", RuleType::SetDefault}});
  for (const Rule& rule : kRules) {
    if (rule.words == words) return rule.type;
  }
  return RuleType::None;
}

std::string Literal(std::string_view text) {
  return "N'" + text::Doubled(text, '\'') + "'";
}

/// The rules of the keys. The catalog function is no help: sp_fkeys tells only cascade from
/// everything else.
void ReadRules(const std::shared_ptr<Logon>& logon, const std::string& schema,
               std::vector<Key>& keys) {
  std::string names;
  for (const Key& key : keys) names += (names.empty() ? "" : ", ") + Literal(key.name);
  std::u16string sql = ToUtf16(
      "select CONSTRAINT_NAME, DELETE_RULE, UPDATE_RULE"
      " from INFORMATION_SCHEMA.REFERENTIAL_CONSTRAINTS where CONSTRAINT_SCHEMA = " +
      Literal(schema) + " and CONSTRAINT_NAME in (" + names + ")");
  const Rows rows = ReadCatalog(logon, [&](SQLHANDLE statement) {
    return SQLExecDirectW(statement, Argument(sql), static_cast<SQLINTEGER>(sql.size()));
  });
  for (const CatalogRow& row : rows) {
    const auto key = std::find_if(keys.begin(), keys.end(), [&](const Key& candidate) {
      return candidate.name == row.Text("CONSTRAINT_NAME");
    });
    if (key == keys.end()) continue;
    key->delete_rule = ToRule(row.Text("DELETE_RULE"));
    key->update_rule = ToRule(row.Text("UPDATE_RULE"));
  }
}

void SortByKeyOrder(Rows& rows, const std::string& name_column, const std::string& order_column) {
  std::stable_sort(rows.begin(), rows.end(), [&](const auto& a, const auto& b) {
    return std::pair(a.Text(name_column), a.Number(order_column)) <
           std::pair(b.Text(name_column), b.Number(order_column));
  });
}

std::vector<Key> PrimaryKey(const std::shared_ptr<Logon>& logon, const std::string& table) {
  Rows rows = PrimaryKeyRows(logon, table);
  SortByKeyOrder(rows, "PK_NAME", "KEY_SEQ");
  std::vector<Key> keys;
  for (const CatalogRow& row : rows) {
    Key& key = ItemOf(keys, row.Text("PK_NAME"), [] { return Key(); });
    key.columns.push_back({row.Text("COLUMN_NAME"), ""});
  }
  return keys;
}

std::vector<Key> ForeignKeys(const std::shared_ptr<Logon>& logon, const std::string& table) {
  std::u16string name = ToUtf16(table);
  Rows rows = ReadCatalog(logon, [&](SQLHANDLE statement) {
    return SQLForeignKeysW(statement, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0,
                           Argument(name), SQL_NTS);
  });
  rows = RowsOfTable(std::move(rows), "FKTABLE_NAME", "FKTABLE_SCHEM", table);
  SortByKeyOrder(rows, "FK_NAME", "KEY_SEQ");
  std::vector<Key> keys;
  for (const CatalogRow& row : rows) {
    Key& key = ItemOf(keys, row.Text("FK_NAME"), [&] {
      Key fresh;
      fresh.type = KeyType::Foreign;
      fresh.related_table = row.Text("PKTABLE_NAME");
      return fresh;
    });
    key.columns.push_back({row.Text("FKCOLUMN_NAME"), row.Text("PKCOLUMN_NAME")});
  }
  if (!keys.empty()) ReadRules(logon, rows.front().Text("FKTABLE_SCHEM"), keys);
  return keys;
}

}  // namespace

std::vector<TableInfo> ReadTables(const std::shared_ptr<Logon>& logon) {
  std::u16string every_name = u"%";
  const Rows rows = ReadCatalog(logon, [&](SQLHANDLE statement) {
    return SQLTablesW(statement, nullptr, 0, nullptr, 0, Argument(every_name), SQL_NTS, nullptr, 0);
  });
  static constexpr auto kSystemSchemas =
      std::to_array<std::string_view>({"sys", "INFORMATION_SCHEMA"});
  std::vector<TableInfo> tables;
  for (const CatalogRow& row : rows) {
    TableInfo table = {row.Text("TABLE_NAME"), row.Text("TABLE_TYPE")};
    const std::string schema = row.Text("TABLE_SCHEM");
    const bool is_system =
        std::find(kSystemSchemas.begin(), kSystemSchemas.end(), schema) != kSystemSchemas.end();
    if (is_system && table.type == "TABLE") table.type = "SYSTEM TABLE";
    tables.push_back(std::move(table));
  }
  return tables;
}

std::vector<Column> ReadColumns(const std::shared_ptr<Logon>& logon, const std::string& table) {
  std::u16string pattern = AsPattern(table);
  Rows rows = ReadCatalog(logon, [&](SQLHANDLE statement) {
    return SQLColumnsW(statement, nullptr, 0, nullptr, 0, Argument(pattern), SQL_NTS, nullptr, 0);
  });
  rows = RowsOfTable(std::move(rows), "TABLE_NAME", "TABLE_SCHEM", table);
  std::stable_sort(rows.begin(), rows.end(), [](const auto& a, const auto& b) {
    return a.Number("ORDINAL_POSITION") < b.Number("ORDINAL_POSITION");
  });
  std::vector<Column> columns;
  for (const CatalogRow& row : rows) columns.push_back(ToColumn(row));
  return columns;
}

std::vector<Index> ReadIndexes(const std::shared_ptr<Logon>& logon, const std::string& table) {
  std::u16string name = ToUtf16(table);
  Rows rows = ReadCatalog(logon, [&](SQLHANDLE statement) {
    return SQLStatisticsW(statement, nullptr, 0, nullptr, 0, Argument(name), SQL_NTS, SQL_INDEX_ALL,
                          SQL_QUICK);
  });
  rows = RowsOfTable(std::move(rows), "TABLE_NAME", "TABLE_SCHEM", table);
  std::set<std::string> primary_keys;
  for (const CatalogRow& row : PrimaryKeyRows(logon, table)) {
    primary_keys.insert(row.Text("PK_NAME"));
  }
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
    index.columns.push_back(row.Text("COLUMN_NAME"));
  }
  return indexes;
}

std::vector<Key> ReadKeys(const std::shared_ptr<Logon>& logon, const std::string& table) {
  std::vector<Key> keys = PrimaryKey(logon, table);
  for (Key& key : ForeignKeys(logon, table)) keys.push_back(std::move(key));
  return keys;
}

}  // namespace dorvane::ado::odbc
