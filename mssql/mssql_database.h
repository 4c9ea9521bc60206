#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "endpoint/database_base.h"

namespace dorvane {

/// A Microsoft SQL Server. As the source of a transfer it converts its tables into MySQL tables.
class MsSqlDatabase : public DatabaseBase {
 public:
  /// `host` must outlive the endpoint.
  explicit MsSqlDatabase(IRunHost& host, ado::ProviderLookup providers = ado::InstalledProvider);

  using DatabaseBase::CopyTableContent;
  ServerKind Kind() const override { return ServerKind::MsSql; }

 private:
  // connection.cpp
  void PrepareConnection(ado::Connection& connection, bool with_db_name) const override;
  std::optional<ConnectionFailure> DescribeConnectionFailure(
      const RunTimeError& error, const ado::Connection& connection) const override;
  NameList ReadDatabases(ado::Connection& connection) override;
  void ReportListingFailure(const RunTimeError& error, const ado::Errors& errors) override;
  std::string CreateDatabaseStatement(const std::string& name) const override;
  void ReportCreationFailure(const std::string& name, const RunTimeError& error,
                             const ado::Errors& errors) override;
  bool IsListed(const ado::TableInfo& table) const override;

  // transfer.cpp
  void PrepareDestination(const NameList& src_tables) override;
  void ConvertTable(const std::string& name) override;
  void RelateTable(const std::string& name) override;
  /// False when merge mode goes on with the table that is there already.
  bool CreateTable(const std::string& create_statement);
  /// Empty when the table has no identity column. Throws RunTimeError.
  std::string FindIdentityColumn(const std::string& table_name);
  std::string CreateTableStatement(ado::Table& tab_src, const std::string& identity_column);
  void ReportTableFailure(const std::string& name, const std::string& dest_name,
                          const RunTimeError& error);

  // columns.cpp
  /// The definition behind a column's name; fills the column's facts. Throws RunTimeError when the
  /// default cannot be converted.
  std::string GetColumnType(const ado::Column& col, const std::string& identity_column,
                            std::size_t col_idx);

  // keys.cpp
  void AddPrimaryKeyConstraint(ado::Table& tab_src, const std::string& identity_column);

  // rows.cpp
  /// False when the user ended the run before the last row.
  bool CopyTableContent(ado::Table& tab_src);

  // relationships.cpp
  void AddRelationships(ado::Table& tab_src);
  /// False when the failure ends the table's relationships.
  bool AddRelationship(const std::string& table_name, const ado::Key& key);
};

}  // namespace dorvane
