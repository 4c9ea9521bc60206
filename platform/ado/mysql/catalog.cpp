#include "platform/ado/mysql/catalog.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <utility>

#include "platform/ado/mysql/types.h"

namespace dorvane::ado::mysql {

namespace {

using Cell = std::optional<std::string>;

template <typename Number>
Number NumberOf(std::string_view text) {
  Number number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

template <typename Number>
Number NumberOf(const Cell& cell) {
  return cell ? NumberOf<Number>(std::string_view(*cell)) : 0;
}

/// What stands for the database in a condition.
std::string SchemaText(const ServerLink& link, const std::string& database) {
  return database.empty() ? "database()" : Literal(link.client.get(), database);
}

/// A condition that picks one table by its exact name. The plain comparison, which may ignore
/// case, is what servers look tables up by; the second one makes it exact.
std::string IsTable(const ServerLink& link, std::string_view alias, const std::string& database,
                    const std::string& table) {
  const std::string schema = SchemaText(link, database);
  const std::string name = Literal(link.client.get(), table);
  return fmt::format(
      "{0}.table_schema = {1} and {0}.table_name = {2} and binary {0}.table_name = {2}", alias,
      schema, name);
}

struct TypeName {
  std::string_view server;
  std::string_view ado;
};

constexpr std::array kTableTypes = {
    TypeName{"BASE TABLE", "TABLE"},
    TypeName{"SYSTEM VERSIONED", "TABLE"},
    TypeName{"SYSTEM VIEW", "SYSTEM TABLE"},
};

/// The number in the brackets of "datetime(6)"; 0 without any.
int BracketedNumber(std::string_view column_type) {
  const auto open = column_type.find('(');
  if (open == std::string_view::npos) return 0;
  return NumberOf<int>(column_type.substr(open + 1));
}

constexpr std::array<std::string_view, 3> kTypesWithFraction = {"time", "datetime", "timestamp"};

Declaration DeclarationOf(const std::string& type, const std::string& column_type,
                          const Cell& length, const Cell& precision, const Cell& scale,
                          const Cell& character_set) {
  Declaration declaration{.type = type,
                          .is_unsigned = column_type.find(" unsigned") != std::string::npos,
                          .is_unicode = character_set && IsUnicode(*character_set),
                          .length = NumberOf<std::int64_t>(length),
                          .precision = NumberOf<int>(precision),
                          .scale = NumberOf<int>(scale)};
  if (type == "bit") declaration.length = NumberOf<std::int64_t>(precision);
  // Old catalogs have no column of their own for these digits.
  if (std::ranges::find(kTypesWithFraction, type) != kTypesWithFraction.end()) {
    declaration.scale = BracketedNumber(column_type);
  }
  return declaration;
}

bool HasRow(const std::vector<Key>& keys, const Key& key) {
  return !keys.empty() && keys.back().name == key.name && keys.back().type == key.type;
}

KeyType KeyTypeOf(const std::string& type) {
  if (type == "PRIMARY KEY") return KeyType::Primary;
  return type == "UNIQUE" ? KeyType::Unique : KeyType::Foreign;
}

RuleType RuleOf(const Cell& rule) {
  if (rule == "CASCADE") return RuleType::Cascade;
  if (rule == "SET NULL") return RuleType::SetNull;
  return rule == "SET DEFAULT" ? RuleType::SetDefault : RuleType::None;
}

/// The bytes of a binary default as "0x...". The table knows them, but tells those of a NOT NULL
/// column only beside a row. Nothing when it does not tell.
std::optional<std::string> BytesOfDefault(const ServerLink& link, const std::string& database,
                                          const std::string& table, const std::string& column) {
  const std::string source =
      (database.empty() ? "" : QuotedName(database) + ".") + QuotedName(table) + " t";
  for (const std::string& from : {source, "(select 1) one left join " + source + " on true"}) {
    try {
      const TextRows rows =
          Query(link.client.get(),
                fmt::format("select hex(default(t.{})) from {} limit 1", QuotedName(column), from));
      if (!rows.empty() && rows[0].at(0)) return "0x" + *rows[0].at(0);
    } catch (const ProviderError&) {
      // Such as a view's column.
      return std::nullopt;
    }
  }
  return std::nullopt;
}

/// The catalog writes "?" for bytes that are no text, or digits that end at the first zero byte.
void ReplaceDoubtfulBytes(const ServerLink& link, const std::string& database,
                          const std::string& table, Column& column) {
  const bool has_digits = column.default_value->starts_with("0x");
  if (!has_digits && column.default_value->find('?') == std::string::npos) return;
  std::optional<std::string> bytes = BytesOfDefault(link, database, table, column.name);
  if (bytes || !has_digits) column.default_value = std::move(bytes);
}

/// How the catalog marks columns that are computed; a default that is an expression is none.
bool IsGenerated(std::string_view extra) {
  constexpr std::array<std::string_view, 3> kMarks = {"VIRTUAL GENERATED", "STORED GENERATED",
                                                      "PERSISTENT"};
  return extra == "VIRTUAL" || std::ranges::any_of(kMarks, [extra](std::string_view mark) {
           return extra.find(mark) != std::string_view::npos;
         });
}

/// Of a table that has computed columns.
void ReadExpressions(const ServerLink& link, const std::string& database, const std::string& table,
                     std::vector<Column>& columns) {
  const std::string sql = fmt::format(
      "select column_name, generation_expression from information_schema.columns c where {}",
      IsTable(link, "c", database, table));
  try {
    for (const auto& row : Query(link.client.get(), sql)) {
      const auto column = std::ranges::find(columns, row.at(0).value_or(""), &Column::name);
      if (column != columns.end()) column->kind.computed = row.at(1).value_or("");
    }
  } catch (const ProviderError&) {
    // An old server does not tell.
  }
}

}  // namespace

std::vector<TableInfo> ReadTables(const ServerLink& link, const std::string& database) {
  MYSQL* client = link.client.get();
  std::vector<TableInfo> tables;
  for (auto& row : Query(client,
                         "select table_name, table_type from information_schema.tables "
                         "where table_schema = " +
                             SchemaText(link, database) + " order by table_name")) {
    const std::string type = row.at(1).value_or("");
    const auto* known = std::ranges::find(kTableTypes, type, &TypeName::server);
    tables.push_back({.name = row.at(0).value_or(""),
                      .type = known != kTableTypes.end() ? std::string(known->ado) : type});
  }
  return tables;
}

std::vector<Column> ReadColumns(const ServerLink& link, const std::string& database,
                                const std::string& table) {
  const std::string sql = fmt::format(
      "select column_name, data_type, column_type, character_maximum_length, numeric_precision, "
      "numeric_scale, character_set_name, is_nullable, column_default, extra, "
      "collation_name "
      "from information_schema.columns c where {} order by ordinal_position",
      IsTable(link, "c", database, table));
  std::vector<Column> columns;
  for (auto& row : Query(link.client.get(), sql)) {
    const std::string type = row.at(1).value_or("");
    const Declaration declaration =
        DeclarationOf(type, row.at(2).value_or(""), row.at(3), row.at(4), row.at(5), row.at(6));
    Column& column = columns.emplace_back();
    static_cast<FieldInfo&>(column) =
        Translate(row.at(0).value_or(""), declaration, row.at(6).has_value());
    column.server_type = row.at(2).value_or("");
    column.kind.collation = row.at(10).value_or("");
    const std::string extra = row.at(9).value_or("");
    column.kind.is_given = IsGenerated(extra);
    column.kind.is_persisted = column.kind.is_given && !extra.starts_with("VIRTUAL");
    if (row.at(7) == "YES") column.attributes |= kColumnNullable;
    if (row.at(8)) {
      column.default_value = DefaultValue(*row.at(8), type, extra, link.quotes_defaults);
    }
    if (IsBinary(column.type) && column.default_value) {
      ReplaceDoubtfulBytes(link, database, table, column);
    }
  }
  const auto is_given = [](const Column& column) { return column.kind.is_given; };
  if (std::ranges::any_of(columns, is_given)) ReadExpressions(link, database, table, columns);
  return columns;
}

std::vector<Index> ReadIndexes(const ServerLink& link, const std::string& database,
                               const std::string& table) {
  const std::string sql = fmt::format(
      "select index_name, non_unique, column_name from information_schema.statistics s where {} "
      "order by non_unique, index_name <> 'PRIMARY', index_name, seq_in_index",
      IsTable(link, "s", database, table));
  std::vector<Index> indexes;
  for (auto& row : Query(link.client.get(), sql)) {
    const std::string name = row.at(0).value_or("");
    if (indexes.empty() || indexes.back().name != name) {
      indexes.push_back({.name = name,
                         .primary_key = name == "PRIMARY",
                         .unique = row.at(1) == "0",
                         .columns = {}});
    }
    // An index over an expression has no column name there.
    indexes.back().columns.push_back(row.at(2).value_or(""));
  }
  return indexes;
}

std::vector<Key> ReadKeys(const ServerLink& link, const std::string& database,
                          const std::string& table) {
  // A unique key and a foreign key may bear the same name.
  const std::string sql = fmt::format(
      "select t.constraint_name, t.constraint_type, k.column_name, k.referenced_table_name, "
      "k.referenced_column_name, r.delete_rule, r.update_rule, "
      "if(k.referenced_table_schema = database(), '', k.referenced_table_schema) "
      "from information_schema.table_constraints t "
      "join information_schema.key_column_usage k on k.constraint_name = t.constraint_name "
      "and (t.constraint_type = 'FOREIGN KEY') = (k.referenced_table_name is not null) and {} "
      "left join information_schema.referential_constraints r "
      "on r.constraint_name = t.constraint_name and t.constraint_type = 'FOREIGN KEY' "
      "and r.constraint_schema = {} and r.table_name = {} "
      "where {} order by t.constraint_type = 'FOREIGN KEY', t.constraint_name <> 'PRIMARY', "
      "t.constraint_name, k.ordinal_position",
      IsTable(link, "k", database, table), SchemaText(link, database),
      Literal(link.client.get(), table), IsTable(link, "t", database, table));
  std::vector<Key> keys;
  for (auto& row : Query(link.client.get(), sql)) {
    Key key{.name = row.at(0).value_or(""),
            .type = KeyTypeOf(row.at(1).value_or("")),
            .related_table = {row.at(7).value_or(""), row.at(3).value_or("")},
            .delete_rule = RuleOf(row.at(5)),
            .update_rule = RuleOf(row.at(6)),
            .columns = {}};
    if (!HasRow(keys, key)) keys.push_back(std::move(key));
    keys.back().columns.push_back(
        {.name = row.at(2).value_or(""), .related_column = row.at(4).value_or("")});
  }
  return keys;
}

}  // namespace dorvane::ado::mysql
