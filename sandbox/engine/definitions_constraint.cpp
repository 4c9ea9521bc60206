#include <algorithm>
#include <set>

#include "sandbox/catalog/session.h"
#include "sandbox/engine/constraints.h"
#include "sandbox/engine/definitions.h"
#include "sandbox/engine/stored_columns.h"
#include "sandbox/text/text_order.h"
#include "sandbox/values/convert.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

constexpr std::int64_t kFirstRow = INT64_MIN, kLastRow = INT64_MAX;

[[noreturn]] void RaiseTaken(const std::string& name) {
  SqlError error = Error(2714, name);
  error.messages.front().state = 5;
  error.messages.push_back(Error(1750).messages.front());
  throw error;
}

// The tables that a change of `start` reaches by cascading keys, each as often as there are ways.
void FollowCascades(const Catalog& catalog, int table, std::vector<int>& reached, int depth) {
  if (depth > 50) return;
  for (const auto& [id, child] : catalog.tables) {
    for (const ForeignKeyDef& key : child.foreign_keys) {
      if (key.parent_table != table) continue;
      if (key.on_delete == ForeignKeyRule::NoAction && key.on_update == ForeignKeyRule::NoAction)
        continue;
      reached.push_back(id);
      if (std::count(reached.begin(), reached.end(), id) < 2)
        FollowCascades(catalog, id, reached, depth + 1);
    }
  }
}

}  // namespace

std::string ConstraintAdder::NameFor(const ConstraintSyntax& constraint, std::string_view prefix,
                                     int id) const {
  if (constraint.name.empty()) {
    // As the server makes them: kind, nine characters of the table, a number in hex.
    const std::string table = table_.name.substr(0, prefix == "PK" || prefix == "UQ" ? 8 : 9);
    std::string name = fmt::format("{}__{}__", prefix, table);
    if (!constraint.column.empty() && prefix != "PK" && prefix != "UQ") {
      name += constraint.column.substr(0, 9) + "__";
    }
    return name + fmt::format("{:08X}", static_cast<unsigned>(id));
  }
  const auto named = [&](const auto& list) {
    return std::any_of(list.begin(), list.end(),
                       [&](const auto& item) { return SameName(item.name, constraint.name); });
  };
  std::vector<IndexDef> keys;
  std::copy_if(table_.indexes.begin(), table_.indexes.end(), std::back_inserter(keys),
               [](const IndexDef& index) { return index.IsConstraint(); });
  const bool default_taken =
      std::any_of(table_.columns.begin(), table_.columns.end(), [&](const ColumnDef& c) {
        return c.default_id != 0 && SameName(c.default_name, constraint.name);
      });
  if (link_.Definitions().HasObject(table_.schema, constraint.name) || named(keys) ||
      default_taken || named(table_.foreign_keys) || named(table_.checks)) {
    RaiseTaken(constraint.name);
  }
  return constraint.name;
}

void ConstraintAdder::Add(const ConstraintSyntax& constraint, bool check_rows) {
  check_rows_ = check_rows;
  if (const auto* key = std::get_if<KeySyntax>(&constraint.what)) AddKey(constraint, *key);
  if (const auto* key = std::get_if<ForeignKeySyntax>(&constraint.what))
    AddForeignKey(constraint, *key);
  if (const auto* check = std::get_if<CheckSyntax>(&constraint.what)) AddCheck(constraint, *check);
  if (const auto* value = std::get_if<DefaultSyntax>(&constraint.what))
    AddDefault(constraint, *value);
}

void ConstraintAdder::AddKey(const ConstraintSyntax& constraint, const KeySyntax& key) {
  if (key.primary && table_.PrimaryKey()) {
    if (stored_) RaiseForConstraint(1779, table_.name);
    Raise(8110, table_.name);
  }
  const int id = link_.NewObjectId();
  IndexDef index;
  index.object_id = id;
  index.name = NameFor(constraint, key.primary ? "PK" : "UQ", id);
  index.unique = true;
  index.primary = key.primary;
  const auto clustered = std::find_if(table_.indexes.begin(), table_.indexes.end(),
                                      [](const IndexDef& other) { return other.clustered; });
  const bool has_clustered = clustered != table_.indexes.end();
  index.clustered = key.clustered.value_or(key.primary && !has_clustered);
  if (index.clustered && has_clustered) {
    if (!stored_) Raise(8112, table_.name);
    RaiseForConstraint(1902, "table", table_.name, clustered->name);
  }
  for (std::size_t i = 0; i < key.columns.names.size(); ++i) {
    const ColumnDef* column = table_.FindColumn(key.columns.names[i]);
    if (!column) RaiseForConstraint(1911, key.columns.names[i]);
    if (!IsKeyable(column->type)) RaiseForConstraint(1919, column->name, table_.name);
    if (key.primary && column->nullable) RaiseForConstraint(8111, table_.name);
    for (const IndexColumn& other : index.columns) {
      if (other.column_id == column->id) RaiseForConstraint(1909, "index", column->name);
    }
    index.columns.push_back({column->id, key.columns.descending[i]});
  }
  for (const IndexDef& other : table_.indexes) {
    if (SameName(other.name, index.name)) RaiseForConstraint(1913, index.name, table_.FullName());
    index.id = std::max(index.id, other.id);
  }
  CheckKeyLength(session_, table_, index);
  new_indexes_.push_back(++index.id);
  table_.indexes.push_back(std::move(index));
}

// The table itself may not be in the catalog yet, or not as it is here.
const TableDef* ConstraintAdder::FindParent(const ObjectName& name) const {
  const TableDef* found = link_.FindTable(name);
  if (found && found->id != table_.id) return found;
  const bool own = SameName(name.name, table_.name) &&
                   (name.schema.empty() || SameName(name.schema, table_.schema));
  return own ? &table_ : nullptr;
}

void ConstraintAdder::AddForeignKey(const ConstraintSyntax& constraint,
                                    const ForeignKeySyntax& syntax) {
  if (table_.IsTemporary()) return;  // the server skips them, too
  ForeignKeyDef key;
  key.id = link_.NewObjectId();
  key.name = NameFor(constraint, "FK", key.id);
  key.on_delete = syntax.on_delete;
  key.on_update = syntax.on_update;
  const TableDef* parent = FindParent(syntax.parent);
  if (!parent) RaiseForConstraint(1767, key.name, syntax.parent.Text());
  key.parent_table = parent->id;
  for (const std::string& name : syntax.columns.names) {
    const ColumnDef* column = table_.FindColumn(name);
    if (!column) RaiseForConstraint(1769, key.name, name, table_.name);
    key.columns.push_back(column->id);
  }
  MatchParentKey(key, syntax, *parent);
  const bool sets_null =
      key.on_delete == ForeignKeyRule::SetNull || key.on_update == ForeignKeyRule::SetNull;
  for (const int id : key.columns) {
    if (sets_null && !table_.Column(id).nullable) RaiseForConstraint(1761, key.name);
  }
  CheckCascadePaths(key);
  key.not_trusted = !check_rows_;
  table_.foreign_keys.push_back(key);
  if (check_rows_) new_keys_.push_back(std::move(key));
}

void ConstraintAdder::MatchParentKey(ForeignKeyDef& key, const ForeignKeySyntax& syntax,
                                     const TableDef& parent) {
  if (syntax.parent_columns.names.empty()) {
    const IndexDef* primary = parent.PrimaryKey();
    if (!primary) RaiseForConstraint(1773, key.name, parent.name);
    for (const IndexColumn& column : primary->columns)
      key.parent_columns.push_back(column.column_id);
  }
  for (const std::string& name : syntax.parent_columns.names) {
    const ColumnDef* column = parent.FindColumn(name);
    if (!column) RaiseForConstraint(1770, key.name, name, parent.name);
    key.parent_columns.push_back(column->id);
  }
  const bool found = parent.UniqueIndexOn(key.parent_columns) != nullptr;
  if (!found || key.columns.size() != key.parent_columns.size()) {
    RaiseForConstraint(1776, parent.name, key.name);
  }
  for (std::size_t i = 0; i < key.columns.size(); ++i) {
    const ColumnDef& child = table_.Column(key.columns[i]);
    const ColumnDef& target = parent.Column(key.parent_columns[i]);
    const auto plain = [](SqlType type) {
      return type == SqlType::Numeric ? SqlType::Decimal : type;
    };
    if (plain(child.type.type) != plain(target.type.type)) {
      RaiseForConstraint(1778, parent.name, target.name, table_.name, child.name, key.name);
    }
    if (child.type.order != target.type.order) {
      RaiseForConstraint(1757, parent.name, target.name, table_.name, child.name, key.name);
    }
    const bool variable = child.type.type == SqlType::VarChar ||
                          child.type.type == SqlType::NVarChar ||
                          child.type.type == SqlType::VarBinary;
    const bool same = child.type.length == target.type.length &&
                      child.type.scale == target.type.scale &&
                      child.type.precision == target.type.precision;
    if (!same && !variable) {
      RaiseForConstraint(1753, parent.name, target.name, table_.name, child.name, key.name);
    }
  }
}

// The server refuses a table that a change of one row could reach by two cascading ways, and rings.
void ConstraintAdder::CheckCascadePaths(const ForeignKeyDef& key) const {
  if (key.on_delete == ForeignKeyRule::NoAction && key.on_update == ForeignKeyRule::NoAction)
    return;
  const auto refuse = [&] { RaiseForConstraint(1785, key.name, table_.name); };
  if (key.parent_table == table_.id) refuse();
  Catalog catalog = link_.Definitions();
  TableDef& table = catalog.tables[table_.id] = table_;
  table.foreign_keys.push_back(key);
  for (const auto& [id, start] : catalog.tables) {
    std::vector<int> reached;
    FollowCascades(catalog, id, reached, 0);
    const std::set<int> different(reached.begin(), reached.end());
    if (different.size() != reached.size() || different.count(id)) refuse();
  }
}

void ConstraintAdder::AddCheck(const ConstraintSyntax& constraint, const CheckSyntax& check) {
  CheckDef added;
  added.id = link_.NewObjectId();
  added.name = NameFor(constraint, "CK", added.id);
  added.text = ConditionText(*check.condition);
  if (!constraint.column.empty()) added.column_id = table_.FindColumn(constraint.column)->id;
  Binder binder(session_);
  Scope scope;
  Relation relation;
  relation.table = &table_;
  relation.stored = table_.StoredName();
  binder.AddTable(relation, table_.name, scope);
  binder.BindCondition(*check.condition, scope);  // raises 207 and its kin
  added.not_trusted = !check_rows_;
  table_.checks.push_back(added);
  if (check_rows_) new_checks_.push_back(std::move(added));
}

void ConstraintAdder::AddDefault(const ConstraintSyntax& constraint, const DefaultSyntax& value) {
  for (ColumnDef& column : table_.columns) {
    if (!SameName(column.name, value.column)) continue;
    if (column.default_id != 0 || column.identity) {
      RaiseForConstraint(15034, "Column already has a DEFAULT bound to it.");
    }
    Binder binder(session_);
    const Bound bound = binder.BindValue(*value.value, Scope());  // a column's name is refused here
    if (!bound.is_null) CheckConvertible(bound.type, column.type, false);
    const int id = link_.NewObjectId();
    column.default_name = NameFor(constraint, "DF", id);
    column.default_id = id;
    column.default_text = "(" + NormalisedText(*value.value) + ")";
    return;
  }
  RaiseForConstraint(1911, value.column);
}

void ConstraintAdder::Finish() {
  const TableDef& table = link_.Definitions().tables.at(table_.id);
  for (const int id : new_indexes_) {
    for (const IndexDef& index : table.indexes) {
      if (index.id == id) MakeStoredIndex(session_, link_, table, index);
    }
  }
  if (!stored_) return;
  if (!new_indexes_.empty()) VerifyKeyLengths(link_, table, kFirstRow, kLastRow);
  for (const ForeignKeyDef& key : new_keys_) {
    VerifyForeignKey(link_, table, key, kFirstRow, kLastRow, "ALTER TABLE");
  }
  for (const CheckDef& check : new_checks_) {
    VerifyCheck(session_, link_, table, check, kFirstRow, kLastRow, "ALTER TABLE");
  }
}

}  // namespace sandbox
