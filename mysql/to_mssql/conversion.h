#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "endpoint/conversion.h"
#include "endpoint/references.h"
#include "mysql/to_mssql/cascade_paths.h"
#include "mysql/to_mssql/code_page.h"
#include "mysql/to_mssql/columns.h"
#include "mysql/to_mssql/foreign_key_text.h"
#include "mysql/to_mssql/key_text.h"
#include "mysql/to_mssql/waiting_rows.h"
#include "mysql/util.h"

namespace dorvane::to_mssql {

/// Converts MySQL tables into SQL Server tables.
class MySqlToMsSql : public Conversion {
 public:
  explicit MySqlToMsSql(Context context);

 private:
  // conversion.cpp
  /// True when the run must know what the destination's bare names mean.
  bool NamesSchema() const;
  TableDefinition DefineTable(ado::Table& tab_src) override;
  /// The columns in the exact mapping. What their types depend on is asked of the rows where the
  /// table will be created.
  void DefineExactly(const std::vector<ado::Column>& columns,
                     const std::vector<ColumnDescription>& descriptions, TableDefinition& table);
  // folding.cpp
  /// Gives the texts of keys that differ in case only a collation that tells them apart.
  void AskForFoldedKeys(ado::Table& tab_src, TableDefinition& table);

  // computed_columns.cpp
  /// Has the destination compute the columns that the source computes, where it can.
  void KeepComputed(ado::Table& tab_src, TableDefinition& table);

  // extras.cpp
  /// Reads the comments, checks and next identity value of a table.
  void DescribeExtras(TableDefinition& table);
  void CompleteTable(const TableDefinition& table) override;
  void AddComment(const TableDefinition& table, const std::string& column,
                  const std::string& comment);
  void Reseed(const TableDefinition& table);

  void PrepareTable(const TableDefinition& table) override;
  std::string CreateTableStatement(const TableDefinition& table) const override;
  std::int32_t TableExistsError() const override;
  bool FoldsTableNames() override;
  ServerKind DestinationKind() const override { return ServerKind::MsSql; }
  void RelateTable(const std::string& name) override;
  std::string SourceName(const ado::TableName& name) const override;
  ado::TableName DestTable(const ado::TableName& name) const override;
  std::string DestQuoted(const ado::TableName& name) const override;
  void MakeSchema(const std::string& name) override;
  void ReportTableFailure(const std::string& name, const RunTimeError& error) override;
  std::unique_ptr<Conversion> Fork(Context context) const override;
  void Join(Conversion& fork) override;

  // trial.cpp
  std::unique_ptr<IRehearsedServer> ServerOver(ado::Connection& connection) const override;
  bool MayRefuseRows(const TableDefinition& table,
                     const std::vector<ado::FieldInfo>& fields) override;

  // overwriting.cpp
  void PrepareOverwriting(const std::vector<const TableDefinition*>& tables) override;
  ado::TableName NameToDrop(const ado::TableName& table) const;
  std::vector<Reference> DestReferences(const std::set<ado::TableName>& tables) override;
  /// Without them the tables can be dropped in any order. Leaves the keys of tables that a key from
  /// elsewhere keeps.
  void DropReferencesAmong(const std::vector<const TableDefinition*>& tables);

  // cures.cpp
  bool CureTable(TableDefinition& table, std::int32_t native_error) override;
  /// Changes the definitions of columns whose rows do not fit them, where the table will be
  /// created.
  void AskTheRows(const std::vector<ado::Column>& columns, TableDefinition& table);
  bool WillBeCreated(const TableDefinition& table);
  /// Of the column itself or one that it refers to.
  bool HoldsNegatives(const ado::TableName& table, const std::string& column);

  // keys.cpp
  void AddPrimaryKeyConstraint(ado::Table& tab_src, TableDefinition& table) override;
  void CheckExistingTable(ado::Table& tab_src, const TableDefinition& table) override;
  /// Creates a key or tells why it is not there.
  void AddKey(const KeyText& key, TableDefinition& table);
  void AddPrimaryKey(const KeyText& key, const TableDefinition& table);
  void AddIndex(const KeyText& key, TableDefinition& table);
  void ReportKey(const TableDefinition& table, const std::string& key, const RunTimeError& error);

  // rows.cpp
  std::unique_ptr<IRowDestination> OpenRows(const TableDefinition& table, TableUse use,
                                            const std::vector<ado::FieldInfo>& fields,
                                            const std::vector<ColumnFacts>& facts) override;
  /// Of the columns that this run makes; null when it has every character.
  std::shared_ptr<const CodePage> DatabasePage();
  bool HasIdentity(const ado::TableName& dest_table);
  void StorePostponedRows(std::map<std::string, RowAccount>& accounts) override;
  void ReportCopyProblem(const TableDefinition& table, std::string_view problem) override;

  // relationships.cpp
  void AddRelationships(ado::Table& tab_src);
  void AddRelationship(const ado::TableName& table, const ForeignKeyText& key);
  /// The same key in the source's catalog.
  ado::Key SourceKey(const ado::TableName& table, const ForeignKeyText& key);
  /// The table that a key refers to, on the destination.
  ado::TableName ReferencedTable(const ForeignKeyText& key) const;
  /// Throws DestinationFailure where the server would refuse the rules beside those of other keys.
  void RehearseRules(const ado::TableName& table, const ForeignKeyText& key,
                     const std::string& delete_rule, const std::string& update_rule);
  bool HasRelationship(const ado::TableName& dest_table, const std::string& quoted_name);
  /// A part of a table definition with its names as they are on the destination.
  std::string DestNames(std::string_view definition_part) const;

  static constexpr std::int32_t kNoSuchTable = 3701;

  const std::string default_schema_;  // of the login on the destination
  Util util_;
  WaitingRows waiting_;
  std::optional<std::shared_ptr<const CodePage>> database_page_;  // once asked
  // Of the keys that a rehearsal has made.
  CascadePaths deletions_;
  CascadePaths updates_;
  std::set<std::string> kept_;  // tables of the source whose old ones could not be dropped
};

}  // namespace dorvane::to_mssql
