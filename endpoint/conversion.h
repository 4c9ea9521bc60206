#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "endpoint/database.h"
#include "endpoint/failure.h"
#include "endpoint/row_copier.h"
#include "endpoint/table_definition.h"
#include "platform/ado/catalog.h"

namespace dorvane {

/// One conversion, from opened connections to closed ones: it prepares the destination, converts
/// each listed table (definition, keys, rows) and then, on request, the relationships. It lives
/// exactly as long as the run and holds all of its state. Each direction derives its own and fills
/// in the steps; every failure becomes one of the events.
class Conversion {
 public:
  struct Context {
    std::unique_ptr<ado::Connection> source;       // open, its database selected
    std::unique_ptr<ado::Connection> destination;  // likewise
    std::string source_database;
    ConversionOptions options;
    IConversionListener& events;  // this and the host must outlive the conversion
    IRunHost& host;
    CopyPlan copy = {};
  };

  virtual ~Conversion() = default;

  /// Converts the tables and closes both connections. Ends early, with the row block in hand
  /// finished, when the host is stopping.
  void Run(const NameList& src_tables);

 protected:
  explicit Conversion(Context context);

  const ConversionOptions& Options() const { return options_; }
  bool IsMerging() const { return options_.convert_mode == convert_mode::kMerge; }
  bool IsOverwriting() const { return options_.convert_mode == convert_mode::kOverwrite; }
  const std::string& SourceDatabase() const { return source_database_; }
  ado::Connection& Source() { return *source_; }
  ado::Connection& Destination() { return *destination_; }
  ado::Catalog& SourceCatalog() { return catalog_; }
  IConversionListener& Events() { return events_; }
  IRunHost& Host() { return host_; }

  void RaiseError(std::string_view message, std::string_view title,
                  std::int32_t style = message_style::kError);
  /// A name as it is on the destination: blanks become "_" when that was asked for.
  std::string DestName(std::string_view name) const;

 private:
  // The steps of a direction. They throw RunTimeError, and DestinationFailure for what the
  // destination refused, unless they say that they report it.

  /// What comes ahead of the first table. Reports its failures.
  virtual void PrepareDestination(const NameList& src_tables) = 0;
  virtual TableDefinition DefineTable(ado::Table& tab_src) = 0;
  /// What comes right before a table is created.
  virtual void PrepareTable(const TableDefinition& table) = 0;
  virtual std::string CreateTableStatement(const TableDefinition& table) const = 0;
  /// Primary key and indexes of a table just created. Reports its failures.
  virtual void AddPrimaryKeyConstraint(ado::Table& tab_src, const TableDefinition& table) = 0;
  /// The table that rows are copied into. `facts` are those of `fields`, one each; both outlive it.
  virtual std::unique_ptr<IRowDestination> OpenRows(const TableDefinition& table, bool is_new,
                                                    const std::vector<ado::FieldInfo>& fields,
                                                    const std::vector<ColumnFacts>& facts) = 0;
  /// The foreign keys of a table, between the two events' places. Throws only for a table that is
  /// not in the source's catalog.
  virtual void RelateTable(const std::string& name) = 0;

  /// A name quoted for the source.
  virtual std::string SourceName(std::string_view name) const = 0;
  virtual void ReportTableFailure(const std::string& name, const RunTimeError& error) = 0;
  virtual void ReportCopyFailure(const TableDefinition& table, const ErrorSummary& failure) = 0;

  void ConvertListedTables(const NameList& src_tables);
  void ConvertTable(const std::string& name);
  bool CreateTable(const TableDefinition& table);
  bool CopyTableContent(const TableDefinition& table, bool is_new);
  std::int32_t CountRows(std::string_view source_name);

  std::unique_ptr<ado::Connection> source_;
  std::unique_ptr<ado::Connection> destination_;
  ado::Catalog catalog_;  // the source's
  const std::string source_database_;
  const ConversionOptions options_;
  IConversionListener& events_;
  IRunHost& host_;
  const CopyPlan copy_;
};

}  // namespace dorvane
