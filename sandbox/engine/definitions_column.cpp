#include "sandbox/catalog/session.h"
#include "sandbox/engine/definitions.h"
#include "sandbox/engine/stored_columns.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

constexpr std::size_t kMostColumns = 1024;
constexpr int kMostRowBytes = 8060;
// Of each row: status, the count of columns, and a bit each for NULL.
constexpr int kRowOverhead = 6;

void CheckIdentity(const TableDef& table, const ColumnDef& column, const ColumnSyntax& syntax) {
  if (!column.identity) return;
  if (table.IdentityColumn()) Raise(2744, table.name);
  const bool whole =
      IsInteger(column.type.type) ||
      ((column.type.type == SqlType::Decimal || column.type.type == SqlType::Numeric) &&
       column.type.scale == 0);
  if (!whole || syntax.nullable.value_or(false)) Raise(2749, column.name);
}

bool IsVariable(const TypeInfo& type) {
  return type.type == SqlType::VarChar || type.type == SqlType::NVarChar ||
         type.type == SqlType::VarBinary || type.type == SqlType::Variant ||
         type.type == SqlType::Xml;
}

}  // namespace

void ResolveType(DatabaseLink& link, int position, const ObjectName& alias, ColumnDef& column,
                 std::optional<bool>& nullable) {
  if (!alias.name.empty()) {
    const AliasTypeDef* type = link.FindType(alias);
    if (!type) Raise(2715, position, alias.Text());
    column.type = type->type;
    column.user_type = type->id;
    if (!nullable) nullable = type->nullable;
  }
  if (column.collation.empty()) return;
  const auto order = OrderOfCollation(column.collation);
  if (!order) Raise(448, column.collation);
  column.type.order = *order;
  if (SameName(column.collation, "database_default")) column.collation.clear();
}

void AppendColumn(DatabaseLink& link, TableDef& table, const ColumnSyntax& syntax) {
  ColumnDef column = syntax.column;
  if (table.FindColumn(column.name)) Raise(2705, column.name, table.name);
  std::optional<bool> nullable = syntax.nullable;
  ResolveType(link, static_cast<int>(table.columns.size()) + 1, syntax.alias_type, column,
              nullable);
  CheckIdentity(table, column, syntax);
  if (column.type.type == SqlType::Timestamp) {
    for (const ColumnDef& other : table.columns) {
      if (other.type.type == SqlType::Timestamp) Raise(2738, table.name, column.name);
    }
  }
  const bool never_null = column.identity || column.type.type == SqlType::Timestamp ||
                          column.generated != Generated::No;
  column.nullable = nullable.value_or(!never_null);
  if (syntax.computed) column.computed_text = ConditionText(*syntax.computed);
  column.id = table.next_column_id++;
  table.columns.push_back(std::move(column));
}

void TypeComputedColumn(Session& session, TableDef& table, const ColumnSyntax& syntax) {
  if (!syntax.computed) return;
  Scope scope = StoredScope(table);
  std::erase_if(scope.sources.front().columns, [&](const ScopeColumn& column) {
    return table.FindColumn(column.name)->IsComputed();
  });
  for (ColumnDef& column : table.columns) {
    if (!column.IsComputed()) continue;
    const bool used =
        column.name != syntax.column.name &&
        table.FindColumn(syntax.column.name)->computed_text.find("[" + column.name + "]") !=
            std::string::npos;
    if (used) Raise(1759, column.name, table.name);
  }
  Binder binder(session);
  const Bound value = binder.BindValue(*syntax.computed, scope);
  for (ColumnDef& column : table.columns) {
    if (!SameName(column.name, syntax.column.name)) continue;
    column.type = value.type;
    column.nullable = syntax.nullable.value_or(value.nullable);
  }
}

void CheckTableLimits(const TableDef& table) {
  const std::size_t count = table.columns.size();
  if (count > kMostColumns) Raise(1702, table.columns[kMostColumns].name, table.name, kMostColumns);
  const int overhead = kRowOverhead + static_cast<int>((count + 7) / 8);
  int bytes = overhead, bits = 0;
  for (const ColumnDef& column : table.columns) {
    const bool stored = !column.IsComputed() || column.persisted;
    if (!stored || column.sparse || IsVariable(column.type)) continue;
    // Eight bits share a byte; long values lie elsewhere.
    if (column.type.type == SqlType::Bit) {
      bytes += bits++ % 8 == 0;
    } else if (!IsLong(column.type)) {
      bytes += MaxLength(column.type);
    }
  }
  if (bytes > kMostRowBytes) Raise(1701, table.name, bytes, overhead, kMostRowBytes);
}

}  // namespace sandbox
