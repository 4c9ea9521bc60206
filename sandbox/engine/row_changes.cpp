#include "sandbox/engine/row_changes.h"

#include <algorithm>

#include "sandbox/catalog/database_link.h"
#include "sandbox/catalog/session.h"
#include "sandbox/engine/constraints.h"
#include "sandbox/engine/insert_plan.h"
#include "sandbox/parser/parser.h"
#include "sandbox/storage/encoding.h"
#include "sandbox/values/convert.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

constexpr int kMaxCascades = 64;

bool Touches(const IndexDef& index, const RowChange& change) {
  return index.unique &&
         std::any_of(index.columns.begin(), index.columns.end(),
                     [&](const auto& c) { return change.values.count(c.column_id) > 0; });
}

bool HasNull(const std::vector<Value>& key) {
  return std::any_of(key.begin(), key.end(), [](const Value& v) { return IsNull(v); });
}

}  // namespace

struct RowChanger::Reference {
  int child_table;
  ForeignKeyDef key;
};

std::vector<RowChanger::Reference> RowChanger::ReferencesTo(const TableDef& table) const {
  std::vector<Reference> references;
  for (const auto& [id, child] : link_.Definitions().tables) {
    for (const ForeignKeyDef& key : child.foreign_keys) {
      if (key.parent_table == table.id && !key.disabled) references.push_back({id, key});
    }
  }
  return references;
}

RowChanger::Key RowChanger::ReadKey(const TableDef& table, const std::vector<int>& columns,
                                    std::int64_t row) {
  std::string names;
  for (const int id : columns) names += (names.empty() ? "" : ",") + TableDef::StoredColumn(id);
  SqliteStatement& statement =
      link_.Cached(fmt::format("SELECT {} FROM {} WHERE rowid=?1", names, table.StoredName()));
  ResetGuard guard(statement);
  statement.Bind(1, row);
  Key key(columns.size());
  if (!link_.Step(statement)) return key;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    ReadColumn(statement.get(), static_cast<int>(i), table.Column(columns[i]).type, key[i]);
  }
  return key;
}

std::vector<std::int64_t> RowChanger::RowsWithKey(const TableDef& table, const TableDef& key_table,
                                                  const std::vector<int>& columns,
                                                  const std::vector<int>& key_columns,
                                                  const Key& key) {
  std::string match;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    match += fmt::format("{}{}=?{}", i ? " AND " : "", TableDef::StoredColumn(columns[i]), i + 1);
  }
  SqliteStatement& statement =
      link_.Cached(fmt::format("SELECT rowid FROM {} WHERE {}", table.StoredName(), match));
  ResetGuard guard(statement);
  for (std::size_t i = 0; i < key.size(); ++i) {
    BindValue(statement.get(), static_cast<int>(i) + 1, key[i],
              key_table.Column(key_columns[i]).type);
  }
  std::vector<std::int64_t> rows;
  while (link_.Step(statement)) rows.push_back(statement.Integer(0));
  return rows;
}

// SQLite looks at uniqueness row by row, the server at the end of the statement: rows whose keys
// change get keys of their own until all are written.
void RowChanger::SetAside(const TableDef& table, const std::vector<RowChange>& changes) {
  std::string assignments;
  for (const IndexDef& index : table.indexes) {
    if (!Touches(index, changes.front())) continue;
    for (const IndexColumn& column : index.columns) {
      if (!changes.front().values.count(column.column_id)) continue;
      const std::string one = TableDef::StoredColumn(column.column_id) + "=randomblob(24)";
      if (assignments.find(one) == std::string::npos)
        assignments += (assignments.empty() ? "" : ",") + one;
    }
  }
  if (assignments.empty()) return;
  SqliteStatement& statement =
      link_.Cached(fmt::format("UPDATE {} SET {} WHERE rowid=?1", table.StoredName(), assignments));
  for (const RowChange& change : changes) {
    statement.Bind(1, change.row);
    link_.Run(statement);
  }
}

void RowChanger::WriteRow(const TableDef& table, const RowChange& change) {
  std::string assignments;
  int index = 0;
  for (const auto& [id, value] : change.values) {
    assignments += fmt::format("{}{}=?{}", index ? "," : "", TableDef::StoredColumn(id), index + 1);
    ++index;
  }
  SqliteStatement& statement = link_.Cached(
      fmt::format("UPDATE {} SET {} WHERE rowid=?{}", table.StoredName(), assignments, index + 1));
  index = 0;
  for (const auto& [id, value] : change.values) {
    BindValue(statement.get(), ++index, value, table.Column(id).type);
  }
  statement.Bind(++index, change.row);
  try {
    link_.Run(statement);
  } catch (const SqliteError& error) {
    const auto value = [&](int column_id) {
      const auto changed = change.values.find(column_id);
      return changed != change.values.end() ? changed->second
                                            : ReadKey(table, {column_id}, change.row).front();
    };
    RaiseDuplicate(link_, table, error, value, change.row);
  }
}

void RowChanger::Update(const TableDef& table, const std::vector<RowChange>& given) {
  if (given.empty()) return;
  if (++depth_ > kMaxCascades) Raise(191);
  std::vector<RowChange> changes = given;
  for (const ColumnDef& column : table.columns) {
    if (column.generated == Generated::RowStart) {
      for (RowChange& change : changes) change.values[column.id] = PeriodValue(column);
    }
    if (column.type.type != SqlType::Timestamp) continue;
    for (RowChange& change : changes) {
      change.values[column.id] = RowVersionValue(link_.NextRowVersion());
    }
  }
  for (const RowChange& change : changes) {
    for (const auto& [id, value] : change.values) {
      const ColumnDef& column = table.Column(id);
      if (IsNull(value) && !column.nullable) {
        Raise(515, column.name, fmt::format("{}.{}", link_.Name(), table.FullName()), statement_);
      }
    }
  }
  std::vector<Reference> references = ReferencesTo(table);
  std::erase_if(references, [&](const Reference& reference) {
    const auto& columns = reference.key.parent_columns;
    return std::none_of(columns.begin(), columns.end(),
                        [&](int id) { return changes.front().values.count(id) > 0; });
  });
  std::vector<std::vector<Key>> before(references.size()), after(references.size());
  for (std::size_t r = 0; r < references.size(); ++r) {
    for (const RowChange& change : changes) {
      before[r].push_back(ReadKey(table, references[r].key.parent_columns, change.row));
    }
  }
  if (changes.size() > 1) SetAside(table, changes);
  for (const RowChange& change : changes) WriteRow(table, change);
  for (std::size_t r = 0; r < references.size(); ++r) {
    for (const RowChange& change : changes) {
      after[r].push_back(ReadKey(table, references[r].key.parent_columns, change.row));
    }
    FollowKeys(references[r], table, before[r], &after[r]);
  }
  const bool verifies = !table.foreign_keys.empty() || !table.checks.empty() || HasLongKeys(table);
  if (verifies) {
    for (const RowChange& change : changes) {
      VerifyKeyLengths(link_, table, change.row, change.row);
      VerifyRows(session_, link_, table, change.row, change.row, statement_);
    }
  }
  --depth_;
}

void RowChanger::Delete(const TableDef& table, const std::vector<std::int64_t>& rows) {
  if (rows.empty()) return;
  if (++depth_ > kMaxCascades) Raise(191);
  const std::vector<Reference> references = ReferencesTo(table);
  std::vector<std::vector<Key>> before(references.size());
  for (std::size_t r = 0; r < references.size(); ++r) {
    for (const std::int64_t row : rows) {
      before[r].push_back(ReadKey(table, references[r].key.parent_columns, row));
    }
  }
  SqliteStatement& statement =
      link_.Cached(fmt::format("DELETE FROM {} WHERE rowid=?1", table.StoredName()));
  for (const std::int64_t row : rows) {
    statement.Bind(1, row);
    link_.Run(statement);
  }
  for (std::size_t r = 0; r < references.size(); ++r) {
    FollowKeys(references[r], table, before[r], nullptr);
  }
  --depth_;
}

// What the rule of a foreign key makes of the children of keys that are gone (`after` null) or new.
void RowChanger::FollowKeys(const Reference& reference, const TableDef& parent,
                            const std::vector<Key>& before, const std::vector<Key>* after) {
  const ForeignKeyDef& key = reference.key;
  const TableDef child = link_.Definitions().tables.at(reference.child_table);
  const ForeignKeyRule rule = after ? key.on_update : key.on_delete;
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (HasNull(before[i])) continue;
    // Another row may have taken the key over.
    if (!RowsWithKey(parent, parent, key.parent_columns, key.parent_columns, before[i]).empty())
      continue;
    const auto rows = RowsWithKey(child, parent, key.columns, key.parent_columns, before[i]);
    if (rows.empty()) continue;
    if (rule == ForeignKeyRule::NoAction) {
      throw StillReferenced(link_, parent, child, key, statement_);
    }
    if (rule == ForeignKeyRule::Cascade && !after) {
      Delete(child, rows);
      continue;
    }
    std::vector<RowChange> changes;
    for (const std::int64_t row : rows) {
      RowChange change;
      change.row = row;
      for (std::size_t c = 0; c < key.columns.size(); ++c) {
        const ColumnDef& column = child.Column(key.columns[c]);
        Value value;
        if (rule == ForeignKeyRule::Cascade) {
          value = Convert((*after)[i][c], parent.Column(key.parent_columns[c]).type, column.type);
        } else if (rule == ForeignKeyRule::SetDefault && !column.default_text.empty()) {
          Parser parser(column.default_text);
          value = session_.Evaluate(*parser.ParseExpressionText(), &column.type);
        }
        change.values[column.id] = std::move(value);
      }
      changes.push_back(std::move(change));
    }
    Update(child, changes);
  }
}

}  // namespace sandbox
