#pragma once

#include "sandbox/catalog/database_link.h"
#include "sandbox/parser/ast.h"

namespace sandbox {

class Session;

/// The named table, or the error `missing` (208, 1088, 4701, 4902) with its name.
const TableDef& TargetTable(DatabaseLink& link, const ObjectName& name, ErrorNumber<1> missing);

/// The schema of a new object of that name. Raises 2714 when the name is taken, 2760.
std::string SchemaOfNew(DatabaseLink& link, const ObjectName& name);

/// Gives the table its id, makes it in storage and writes its definition. Within a transaction.
void AddTable(Session& session, DatabaseLink& link, TableDef table);

/// Makes an index in storage. Raises 1505 where rows have equal keys, 10735 for a filter that it
/// can't have.
void MakeStoredIndex(Session& session, DatabaseLink& link, const TableDef& table,
                     const IndexDef& index);

/// Refuses an index whose key is too long for any row, and warns where it is for some (1945).
/// Raises 1944.
void CheckKeyLength(Session& session, const TableDef& table, const IndexDef& index);

// Columns of a definition that is being written (definitions_column.cpp).
/// Gives the column its type when that is an alias, and its collation's order. Raises 2715, 448.
void ResolveType(DatabaseLink& link, int position, const ObjectName& alias, ColumnDef& column,
                 std::optional<bool>& nullable);
void AppendColumn(DatabaseLink& link, TableDef& table, const ColumnSyntax& syntax);
/// The type of a computed column, once the columns it is computed of are there.
void TypeComputedColumn(Session& session, TableDef& table, const ColumnSyntax& syntax);
/// Raises 1701, 1702.
void CheckTableLimits(const TableDef& table);

/// ALTER TABLE CHECK and NOCHECK. Raises 4917, and 547 with WITH CHECK.
void SwitchConstraints(Session& session, DatabaseLink& link, TableDef& table,
                       const AlterTableStatement& alter);

/// ALTER TABLE's changes of columns and constraints, in storage and in `table`, which the caller
/// stores afterwards.
void AddColumns(Session& session, DatabaseLink& link, const TableDef& table,
                const std::vector<int>& column_ids, bool has_rows);
void DropConstraint(DatabaseLink& link, TableDef& table, const std::string& name);

/// Adds constraints to a table's definition, checks them against the catalog and, where the table
/// is in storage already (`stored`), against its rows. Raises the server's errors.
class ConstraintAdder {
 public:
  ConstraintAdder(Session& session, DatabaseLink& link, TableDef& table, bool stored)
      : session_(session), link_(link), table_(table), stored_(stored) {}

  /// `check_rows` false: WITH NOCHECK.
  void Add(const ConstraintSyntax& constraint, bool check_rows = true);
  /// Makes the indexes that were added in storage.
  void Finish();

 private:
  void AddKey(const ConstraintSyntax& constraint, const KeySyntax& key);
  void AddForeignKey(const ConstraintSyntax& constraint, const ForeignKeySyntax& syntax);
  void AddCheck(const ConstraintSyntax& constraint, const CheckSyntax& check);
  void AddDefault(const ConstraintSyntax& constraint, const DefaultSyntax& value);
  std::string NameFor(const ConstraintSyntax& constraint, std::string_view prefix, int id) const;
  const TableDef* FindParent(const ObjectName& name) const;
  void MatchParentKey(ForeignKeyDef& key, const ForeignKeySyntax& syntax, const TableDef& parent);
  void CheckCascadePaths(const ForeignKeyDef& key) const;

  Session& session_;
  DatabaseLink& link_;
  TableDef& table_;
  const bool stored_;
  bool check_rows_ = true;
  std::vector<int> new_indexes_;
  std::vector<ForeignKeyDef> new_keys_;
  std::vector<CheckDef> new_checks_;
};

}  // namespace sandbox
