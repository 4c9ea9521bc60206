#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "endpoint/database_base.h"
#include "mysql/foreign_key_text.h"
#include "mysql/util.h"

namespace dorvane {

/// A MySQL server. As the source of a transfer it converts its tables into SQL Server tables.
class MySqlDatabase : public DatabaseBase {
 public:
  /// `host` must outlive the endpoint.
  explicit MySqlDatabase(IRunHost& host, ado::ProviderLookup providers = ado::InstalledProvider);

  using DatabaseBase::CopyTableContent;
  ServerKind Kind() const override { return ServerKind::MySql; }
  bool WinNTAuthentication() const override;
  void SetWinNTAuthentication(bool value) override;

 private:
  /// A row of SHOW COLUMNS.
  struct ColumnDescription {
    std::string field;
    std::string null;
    std::string key;
    std::string default_value;  // empty for none
    std::string extra;
  };

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
  std::string CreateTableStatement(ado::Table& tab_src, bool& has_identity_column);
  void ReportTableFailure(const std::string& name, const RunTimeError& error);

  // columns.cpp
  std::vector<ColumnDescription> ShowColumns(const std::string& table_name);
  /// The definition behind a column's name; fills the column's facts and sets the flag when the
  /// column is an identity column. Throws RunTimeError when the default cannot be converted.
  std::string GetColumnType(const ado::Column& col,
                            const std::vector<ColumnDescription>& descriptions,
                            bool& has_identity_column, std::size_t col_idx);

  // keys.cpp
  void AddPrimaryKeyConstraint(ado::Table& tab_src);

  // rows.cpp
  /// False when the user ended the run before the last row.
  bool CopyTableContent(ado::Table& tab_src, bool has_identity_column, bool is_new_table);

  // relationships.cpp
  void AddRelationships(ado::Table& tab_src);
  /// False when the failure ends the table's relationships.
  bool AddRelationship(const std::string& table_reference, const ForeignKeyText& key);
  /// A part of a table definition with its names as they are on the destination.
  std::string DestNames(std::string_view definition_part) const;

  Util util_;
};

}  // namespace dorvane
