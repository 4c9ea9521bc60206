#include "platform/ado/odbc/system_views.h"

#include <fmt/format.h>
#include <sql.h>
#include <sqlext.h>

#include <array>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "platform/ado/odbc/catalog_rows.h"
#include "platform/ado/odbc/result_reader.h"
#include "platform/ado/odbc/system_view_rows.h"
#include "platform/ado/odbc/utf16.h"
#include "platform/text/ascii.h"

namespace dorvane::ado::odbc {

namespace {

constexpr std::array<std::string_view, 11> kViews = {"schemas",
                                                     "objects",
                                                     "columns",
                                                     "types",
                                                     "indexes",
                                                     "index_columns",
                                                     "foreign_keys",
                                                     "foreign_key_columns",
                                                     "default_constraints",
                                                     "computed_columns",
                                                     "identity_columns"};

constexpr std::string_view kDefaultSchema = "isnull(schema_name(), 'dbo')";

std::string Literal(std::string_view text) {
  return "N'" + text::Doubled(text, '\'') + "'";
}

/// The number of one table or view, as a query between parentheses.
std::string ObjectId(const TableName& table) {
  return fmt::format(
      "(select o.object_id from sys.objects o join sys.schemas s on s.schema_id = o.schema_id "
      "where o.type in ('U', 'V') and o.name = {} and s.name = {})",
      Literal(table.name), table.IsBare() ? std::string(kDefaultSchema) : Literal(table.schema));
}

/// A schema's name, empty for the login's own.
std::string SchemaColumn(std::string_view alias) {
  return fmt::format("case when {0}.name = {1} then '' else {0}.name end", alias, kDefaultSchema);
}

/// A condition; true for every row when there is no number.
std::string IsOf(std::string_view column, const std::string& object_id) {
  return object_id.empty() ? "1 = 1" : fmt::format("{} = {}", column, object_id);
}

}  // namespace

std::optional<SystemViews> SystemViews::Find(std::shared_ptr<Logon> logon) {
  std::string sql;
  for (const std::string_view view : kViews)
    sql += fmt::format("select top 0 * from sys.{} ", view);
  std::set<std::string> columns;
  try {
    std::u16string text = ToUtf16(sql);
    const auto reader = logon->Watch([&] {
      Statement statement = logon->NewStatement();
      const SQLRETURN executed =
          SQLExecDirectW(statement.Get(), reinterpret_cast<SQLWCHAR*>(text.data()),
                         static_cast<SQLINTEGER>(text.size()));
      return std::make_unique<OdbcResultReader>(logon, std::move(statement), executed);
    });
    for (const std::string_view view : kViews) {
      for (const FieldInfo& field : reader->Fields()) {
        columns.insert(fmt::format("{}.{}", view, field.name));
      }
      reader->NextResult();
    }
  } catch (const ProviderError&) {
    if (logon->IsLost()) throw;
    return std::nullopt;
  }
  return SystemViews(std::move(logon), std::move(columns));
}

std::string SystemViews::IfThere(const std::string& view, const std::string& alias,
                                 const std::string& column) const {
  return columns_.contains(view + "." + column) ? alias + "." + column : "0";
}

std::vector<TableInfo> SystemViews::Tables() const {
  std::vector<TableInfo> tables;
  ForEachRow(logon_,
             fmt::format("select {} as schema_name, o.name, o.type from sys.objects o "
                         "join sys.schemas s on s.schema_id = o.schema_id "
                         "where o.type in ('U', 'V') order by 3, 1, 2",
                         SchemaColumn("s")),
             [&](const QueryRow& row) {
               const bool is_table = row.Text(2).starts_with('U');
               tables.push_back({{row.Text(0), row.Text(1)}, is_table ? "TABLE" : "VIEW"});
             });
  return tables;
}

void SystemViews::ReadColumns(const std::string& object_id, const DetailsOf& details_of) const {
  const std::string sql = fmt::format(
      "select c.object_id, c.name, c.system_type_id, c.max_length, c.[precision], c.scale, "
      "c.is_nullable, isnull(b.name, t.name), "
      "case when t.is_user_defined = 1 and b.name is not null then "
      "schema_name(t.schema_id) + '.' + t.name end, "
      "convert(nvarchar(4000), isnull(d.definition, object_name(c.default_object_id))), "
      "c.collation_name, convert(nvarchar(4000), e.definition), e.is_persisted, "
      "c.is_identity, convert(varchar(40), i.seed_value), convert(varchar(40), i.increment_value), "
      "convert(varchar(40), i.last_value), {}, {}, {} "
      "from sys.columns c "
      "left join sys.types t on t.user_type_id = c.user_type_id "
      "left join sys.types b on b.user_type_id = c.system_type_id "
      "left join sys.default_constraints d on d.object_id = c.default_object_id "
      "left join sys.computed_columns e on e.object_id = c.object_id and e.column_id = c.column_id "
      "left join sys.identity_columns i on i.object_id = c.object_id and i.column_id = c.column_id "
      "where {} order by c.object_id, c.column_id",
      IfThere("columns", "c", "is_masked"), IfThere("columns", "c", "is_hidden"),
      IfThere("columns", "c", "generated_always_type"), IsOf("c.object_id", object_id));
  ForEachRow(logon_, sql, [&](const QueryRow& row) {
    if (TableDetails* details = details_of(row.Number(0))) AddColumnRow(row, *details);
  });
}

void SystemViews::ReadIndexes(const std::string& object_id, const DetailsOf& details_of) const {
  // Included columns are none of the key's.
  const std::string sql = fmt::format(
      "select i.object_id, i.name, i.type, i.type_desc, i.is_unique, i.is_primary_key, "
      "i.is_disabled, i.is_hypothetical, {}, c.name, k.is_descending_key "
      "from sys.indexes i "
      "left join sys.index_columns k on k.object_id = i.object_id and k.index_id = i.index_id "
      "and k.key_ordinal > 0 "
      "left join sys.columns c on c.object_id = k.object_id and c.column_id = k.column_id "
      "where i.type > 0 and {} "
      "order by i.object_id, i.is_unique desc, case when i.type = 1 then 0 else 1 end, i.name, "
      "k.key_ordinal",
      columns_.contains("indexes.filter_definition")
          ? "convert(nvarchar(4000), i.filter_definition)"
          : "''",
      IsOf("i.object_id", object_id));
  ForEachRow(logon_, sql, [&](const QueryRow& row) {
    if (TableDetails* details = details_of(row.Number(0))) AddIndexRow(row, *details);
  });
}

void SystemViews::ReadKeys(const std::string& object_id, const DetailsOf& details_of) const {
  const std::string sql = fmt::format(
      "select f.parent_object_id, f.name, c.name, {}, o.name, r.name, "
      "f.delete_referential_action, f.update_referential_action, f.is_disabled, f.is_not_trusted "
      "from sys.foreign_keys f "
      "join sys.foreign_key_columns k on k.constraint_object_id = f.object_id "
      "join sys.columns c on c.object_id = k.parent_object_id "
      "and c.column_id = k.parent_column_id "
      "join sys.columns r on r.object_id = k.referenced_object_id "
      "and r.column_id = k.referenced_column_id "
      "join sys.objects o on o.object_id = f.referenced_object_id "
      "join sys.schemas s on s.schema_id = o.schema_id "
      "where {} order by f.parent_object_id, f.name, k.constraint_column_id",
      SchemaColumn("s"), IsOf("f.parent_object_id", object_id));
  ForEachRow(logon_, sql, [&](const QueryRow& row) {
    if (TableDetails* details = details_of(row.Number(0))) AddKeyRow(row, *details);
  });
}

std::vector<Column> SystemViews::Columns(const TableName& table) const {
  TableDetails details;
  ReadColumns(ObjectId(table), [&](std::int64_t) { return &details; });
  return std::move(details.columns);
}

std::vector<Index> SystemViews::Indexes(const TableName& table) const {
  TableDetails details;
  ReadIndexes(ObjectId(table), [&](std::int64_t) { return &details; });
  return std::move(details.indexes);
}

std::vector<Key> SystemViews::Keys(const TableName& table) const {
  TableDetails details;
  const auto details_of = [&](std::int64_t) { return &details; };
  ReadIndexes(ObjectId(table), details_of);
  ReadKeys(ObjectId(table), details_of);
  CompleteKeys(details);
  return std::move(details.keys);
}

std::map<TableName, TableDetails> SystemViews::AllTables() const {
  std::map<TableName, TableDetails> tables;
  std::unordered_map<std::int64_t, TableDetails*> by_id;
  ForEachRow(logon_,
             fmt::format("select o.object_id, {}, o.name from sys.objects o "
                         "join sys.schemas s on s.schema_id = o.schema_id "
                         "where o.type in ('U', 'V')",
                         SchemaColumn("s")),
             [&](const QueryRow& row) {
               by_id[row.Number(0)] = &tables[{row.Text(1), row.Text(2)}];
             });
  const auto details_of = [&](std::int64_t object_id) {
    const auto found = by_id.find(object_id);
    return found != by_id.end() ? found->second : nullptr;
  };
  ReadColumns({}, details_of);
  ReadIndexes({}, details_of);
  ReadKeys({}, details_of);
  for (auto& [name, details] : tables) CompleteKeys(details);
  return tables;
}

}  // namespace dorvane::ado::odbc
