#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "endpoint/column_facts.h"
#include "endpoint/database.h"
#include "endpoint/destination.h"
#include "endpoint/row_copier.h"
#include "platform/ado/catalog.h"

namespace dorvane {

/// What both endpoints do alike: the settings, the catalog operations around a fresh connection,
/// and the frame of a transfer. The differences are the private and protected virtual functions.
class DatabaseBase : public IDatabase {
 public:
  bool WinNTAuthentication() const override { return win_nt_authentication_; }
  void SetWinNTAuthentication(bool value) override { win_nt_authentication_ = value; }
  const std::string& UserId() const override { return user_id_; }
  void SetUserId(std::string value) override { user_id_ = std::move(value); }
  const std::string& Password() const override { return password_; }
  void SetPassword(std::string value) override { password_ = std::move(value); }
  std::int16_t PortNo() const override { return port_no_; }
  void SetPortNo(std::int16_t value) override { port_no_ = value; }
  const std::string& DbName() const override { return db_name_; }
  void SetDbName(std::string value) override { db_name_ = std::move(value); }
  const std::string& Server() const override { return server_; }
  void SetServer(std::string value) override { server_ = std::move(value); }
  bool CopyTableContent() const override { return copy_table_content_; }
  void SetCopyTableContent(bool value) override { copy_table_content_ = value; }
  void SetConvertMode(std::int16_t value) override { convert_mode_ = value; }
  std::int16_t ConvertMode() const override { return convert_mode_; }
  void SetReplaceSpaceWithUnderscore(bool value) override { replace_space_ = value; }
  bool ReplaceSpaceWithUnderscore() const override { return replace_space_; }
  bool ConvertRelationships() const override { return convert_relationships_; }
  void SetConvertRelationships(bool value) override { convert_relationships_ = value; }

  std::unique_ptr<ado::Connection> OpenConnection(bool with_db_name) override;
  std::optional<NameList> GetDatabases() override;
  bool CreateDatabase(const std::string& name) override;
  std::optional<NameList> GetTablesFromDatabase() override;
  void TransferToDest(IDatabase& dest, const NameList& src_tables) override;
  void SetListener(IConversionListener* listener) override { listener_ = listener; }

  /// How rows travel when this endpoint is the source. The outcome is the same.
  void SetCopyStrategy(CopyStrategy strategy, ado::BlockLimits limits = kTravellingBlock) {
    copy_strategy_ = strategy;
    block_limits_ = limits;
  }

 protected:
  /// `host` must outlive the endpoint.
  DatabaseBase(IRunHost& host, ado::ProviderLookup providers);

  IRunHost& Host() { return host_; }
  IConversionListener& Events();
  void RaiseError(std::string_view message, std::string_view title,
                  std::int32_t style = message_style::kError);

  bool IsMerging() const { return convert_mode_ == convert_mode::kMerge; }
  bool IsOverwriting() const { return convert_mode_ == convert_mode::kOverwrite; }
  /// A name as it is written on the destination: blanks become "_" when that was asked for.
  std::string DestName(std::string_view name) const;
  ado::ConnectionSettings LogonSettings(bool with_db_name) const;

  // Of the transfer that runs.
  ado::Connection& Source() { return *transfer_->source; }
  ado::Connection& Destination() { return *transfer_->destination; }
  ado::Catalog& SourceCatalog() { return *transfer_->catalog; }
  std::vector<ColumnFacts>& Facts() { return transfer_->facts; }
  /// Copies what is left of `source` through `rows`. False when the user ended the run meanwhile.
  /// Throws DestinationFailure and, for a failure of the source, RunTimeError.
  bool CopyRows(ado::Recordset& source, IRowDestination& rows);
  /// The number that a "select count(*) as Rows_No" statement gives on the source.
  std::int32_t CountRows(std::string_view sql);

 private:
  // Connecting and the catalog.
  virtual void PrepareConnection(ado::Connection& connection, bool with_db_name) const = 0;
  /// None when there is nothing to report.
  virtual std::optional<ConnectionFailure> DescribeConnectionFailure(
      const RunTimeError& error, const ado::Connection& connection) const = 0;
  virtual NameList ReadDatabases(ado::Connection& connection) = 0;
  virtual void ReportListingFailure(const RunTimeError& error, const ado::Errors& errors) = 0;
  virtual std::string CreateDatabaseStatement(const std::string& name) const = 0;
  virtual void ReportCreationFailure(const std::string& name, const RunTimeError& error,
                                     const ado::Errors& errors) = 0;
  virtual bool IsListed(const ado::TableInfo& table) const = 0;

  // The steps of a transfer; each reports its own failures.
  virtual void PrepareDestination(const NameList& src_tables) = 0;
  virtual void ConvertTable(const std::string& name) = 0;
  virtual void RelateTable(const std::string& name) = 0;

  /// What a transfer holds from its start to its end.
  struct Transfer {
    std::unique_ptr<ado::Connection> source;
    std::unique_ptr<ado::Connection> destination;
    std::optional<ado::Catalog> catalog;
    std::vector<ColumnFacts> facts;
  };
  void ConvertListedTables(const NameList& src_tables);

  IRunHost& host_;
  ado::ProviderLookup providers_;
  IConversionListener* listener_ = nullptr;
  std::optional<Transfer> transfer_;
  CopyStrategy copy_strategy_ = CopyStrategy::Blocks;
  ado::BlockLimits block_limits_ = kTravellingBlock;

  bool win_nt_authentication_ = false;
  std::string user_id_;
  std::string password_;
  std::int16_t port_no_ = 0;
  std::string db_name_;
  std::string server_;
  bool copy_table_content_ = false;
  std::int16_t convert_mode_ = convert_mode::kMerge;
  bool replace_space_ = false;
  bool convert_relationships_ = false;
};

/// A message by native error number, for tables of them.
struct NativeMessage {
  std::int32_t native_error;
  std::string_view text;
};

/// The text of a native error in a table, or none.
template <typename Table>
std::optional<std::string_view> FindMessage(const Table& table, std::int32_t native_error) {
  for (const NativeMessage& row : table) {
    if (row.native_error == native_error) return row.text;
  }
  return std::nullopt;
}

}  // namespace dorvane
