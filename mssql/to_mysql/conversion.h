#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "endpoint/conversion.h"
#include "endpoint/references.h"

namespace dorvane::to_mysql {

/// Converts SQL Server tables into MySQL tables.
class MsSqlToMySql : public Conversion {
 public:
  explicit MsSqlToMySql(Context context) : Conversion(std::move(context)) {}

 private:
  // conversion.cpp
  TableDefinition DefineTable(ado::Table& tab_src) override;
  void PrepareTable(const TableDefinition& table) override;
  std::string CreateTableStatement(const TableDefinition& table) const override;
  std::int32_t TableExistsError() const override;
  bool CureTable(TableDefinition& table, std::int32_t native_error) override;
  bool FoldsTableNames() override;
  ServerKind DestinationKind() const override { return ServerKind::MySql; }
  void RelateTable(const std::string& name) override;
  std::string_view WideCount() const override { return "count_big(*)"; }
  std::string SourceName(const ado::TableName& name) const override;
  ado::TableName DestTable(const ado::TableName& name) const override;
  std::string DestQuoted(const ado::TableName& name) const override;
  void MakeSchema(const std::string& name) override;
  void ReportTableFailure(const std::string& name, const RunTimeError& error) override;
  std::unique_ptr<Conversion> Fork(Context context) const override;
  void Join(Conversion& fork) override;
  /// Empty when the table has no identity column. Throws RunTimeError.
  std::string FindIdentityColumn(ado::Table& tab_src);
  /// True when there is a table of that name; false too for a question that fails.
  bool IsOnDestination(const ado::TableName& dest_name);

  // computed_columns.cpp
  /// Has the destination compute the columns that the source computes, where it can.
  void KeepComputed(ado::Table& tab_src, TableDefinition& table);

  // extras.cpp
  /// Reads the comments, checks and next identity value of a table.
  void DescribeExtras(TableDefinition& table);
  static std::string CommentClause(const std::string& comment);
  void CompleteTable(const TableDefinition& table) override;

  // folding.cpp
  /// Gives the texts of keys that differ in case only a collation that tells them apart.
  void AskForFoldedKeys(ado::Table& tab_src, TableDefinition& table);

  // data_questions.cpp
  /// Widens the columns whose values would not all fit otherwise.
  void AskTheData(ado::Table& tab_src, TableDefinition& table);
  void AskForWideTinyInts(ado::Table& tab_src, TableDefinition& table);
  void AskForMilliseconds(ado::Table& tab_src, TableDefinition& table);
  /// True when the source has a row for the query; false too for a question that fails.
  bool SourceHasRow(const std::string& query);
  /// The columns whose seconds have a seventh digit in a row. Throws RunTimeError.
  std::set<std::string> AskForFineSeconds(ado::Table& tab_src);
  /// True when a value of the column has digits behind the point that MySQL's DECIMAL has not.
  bool HasFineDecimals(const ado::TableName& table, const std::string& column);

  // keys.cpp
  void AddPrimaryKeyConstraint(ado::Table& tab_src, TableDefinition& table) override;
  void CheckExistingTable(ado::Table& tab_src, const TableDefinition& table) override;
  /// What became of a key: nothing, an index, or one that tells rows apart.
  enum class KeyResult { None, Plain, Unique };
  /// Reports its failure, and says in `notes` what the key lost.
  KeyResult AddKey(ado::Table& tab_src, const TableDefinition& table, const ado::Index& index,
                   std::vector<std::string>& notes);
  std::string KeyStatement(const TableDefinition& table, const ado::Index& index,
                           const std::string& columns, bool replaces_identity) const;
  /// The primary key as a constraint of a Create Table statement; empty when there is none.
  std::string PrimaryKeyClause(const std::vector<ado::Index>& indexes) const;
  std::vector<std::string> DestNames(const std::vector<std::string>& names) const;
  /// A key of which only a part of the columns' lengths fits.
  void TellPrefix(const ado::Index& index, const TableDefinition& table,
                  std::vector<std::string>& notes);
  void TellNote(const TableDefinition& table, std::string_view note);
  void ReportKey(const ado::Index& index, const TableDefinition& table, std::int32_t number,
                 std::string_view description);

  // rows.cpp
  std::unique_ptr<IRowDestination> OpenRows(const TableDefinition& table, TableUse use,
                                            const std::vector<ado::FieldInfo>& fields,
                                            const std::vector<ColumnFacts>& facts) override;
  void ReportCopyProblem(const TableDefinition& table, std::string_view problem) override;

  // trial.cpp
  std::unique_ptr<IRehearsedServer> ServerOver(ado::Connection& connection) const override;
  bool MayRefuseRows(const TableDefinition& table,
                     const std::vector<ado::FieldInfo>& fields) override;

  // overwriting.cpp
  void PrepareOverwriting(const std::vector<const TableDefinition*>& tables) override;
  std::vector<Reference> DestReferences(const std::set<ado::TableName>& tables) override;

  // relationships.cpp
  void AddRelationships(ado::Table& tab_src);
  /// False when the failure ends the table's relationships.
  bool AddRelationship(const ado::TableName& table, ado::Key key);
  enum class NameForm { Bare, Quoted };
  std::string RelationshipStatement(const ado::TableName& table, const ado::Key& key,
                                    NameForm form);
  /// The table that a key refers to, as its statement names it.
  ado::TableName ReferencedTable(const ado::TableName& table, const ado::Key& key);
  /// For a rehearsal: throws DestinationFailure when the database will have a key of that name.
  void RehearseName(const ado::TableName& dest_table, const std::string& name);
  bool ReportRelationship(const ado::TableName& table, const ado::Key& key,
                          const DestinationFailure& failure);
  /// True when the destination's table has a foreign key of that name.
  bool HasRelationship(const ado::TableName& dest_table, const std::string& key_name);
  /// Rows that were stored unchecked and have no parent now that every table is there.
  void ReportOrphans(const ado::TableName& dest_name);

  std::set<ado::TableName> unchecked_tables_;  // names on the destination
  // Databases and names in lower case of the keys that a rehearsal has made.
  std::set<std::pair<std::string, std::string>> relationship_names_;
  std::optional<bool> new_takes_blocks_;  // unknown before the first new table
};

}  // namespace dorvane::to_mysql
