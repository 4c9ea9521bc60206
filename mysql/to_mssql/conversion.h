#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "endpoint/conversion.h"
#include "mysql/to_mssql/foreign_key_text.h"
#include "mysql/util.h"

namespace dorvane {

/// Converts MySQL tables into SQL Server tables.
class MySqlToMsSql : public Conversion {
 public:
  explicit MySqlToMsSql(Context context) : Conversion(std::move(context)) {}

 private:
  // conversion.cpp
  TableDefinition DefineTable(ado::Table& tab_src) override;
  void PrepareOverwriting(const std::vector<const TableDefinition*>& tables) override;
  void PrepareTable(const TableDefinition& table) override;
  std::string CreateTableStatement(const TableDefinition& table) const override;
  std::int32_t TableExistsError() const override;
  bool CureTable(TableDefinition& table, std::int32_t native_error) override;
  void CheckExistingTable(ado::Table& tab_src, const TableDefinition& table) override;
  std::string SelectList(const TableDefinition& table) const override;
  bool FoldsTableNames() override;
  void RelateTable(const std::string& name) override;
  std::string SourceName(std::string_view name) const override;
  void ReportTableFailure(const std::string& name, const RunTimeError& error) override;

  // keys.cpp
  void AddPrimaryKeyConstraint(ado::Table& tab_src, TableDefinition& table) override;

  // rows.cpp
  std::unique_ptr<IRowDestination> OpenRows(const TableDefinition& table, bool is_new,
                                            const std::vector<ado::FieldInfo>& fields,
                                            const std::vector<ColumnFacts>& facts) override;
  void ReportCopyProblem(const TableDefinition& table, std::string_view problem) override;

  // relationships.cpp
  void AddRelationships(ado::Table& tab_src);
  /// False when the failure ends the table's relationships.
  bool AddRelationship(const std::string& table_reference, const ForeignKeyText& key);
  /// A part of a table definition with its names as they are on the destination.
  std::string DestNames(std::string_view definition_part) const;

  Util util_;
};

}  // namespace dorvane
