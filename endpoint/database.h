#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "endpoint/events.h"
#include "endpoint/run_host.h"
#include "platform/ado/connection.h"
#include "platform/ado/connection_settings.h"

namespace dorvane {

/// Table or database names in order, as the server's catalog spells them (UTF-8).
using NameList = std::vector<std::string>;

/// What to do with a destination table of the same name. Kept as a number: other values behave as
/// each operation says.
namespace convert_mode {
inline constexpr std::int16_t kMerge = 1;
inline constexpr std::int16_t kOverwrite = 2;
}  // namespace convert_mode

/// Which types the destination's columns get: those that the program has always given, or those
/// that lose nothing of a value.
enum class TypeMapping { Classic, Exact };

/// What is compared when the tables are there: nothing, the number of rows, or every value.
enum class Verification { None, Counts, Values };

/// What becomes of the name of a table outside the default schema of SQL Server's login on MySQL,
/// which has no schemas: `Schema_Table`, `Table`, or `Table` in a database `Schema`.
enum class SchemaPolicy { Prefix, Drop, Database };

/// What becomes of a column that the source computes: one that holds its values, or one that the
/// destination computes where it can.
enum class ComputedColumns { Values, Generated };

/// The most tables that are converted side by side.
inline constexpr int kMostTablesAtOnce = 8;

/// How a database is converted; read from the source endpoint only.
struct ConversionOptions {
  bool copy_table_content = false;
  std::int16_t convert_mode = convert_mode::kMerge;
  bool replace_space_with_underscore = false;
  bool convert_relationships = false;
  Verification verification = Verification::None;
  TypeMapping types = TypeMapping::Classic;
  ComputedColumns computed_columns = ComputedColumns::Values;
  SchemaPolicy schemas = SchemaPolicy::Prefix;  // from SQL Server only
  std::string destination_schema = {};          // to SQL Server only; empty: the login's default
  NameList reports = {};                        // files that an unattended run's report goes to
  int tables_at_once = 1;  // up to kMostTablesAtOnce, each over a pair of connections of its own
};

/// How large a table is, as the server's catalog estimates it.
struct TableSize {
  std::string name;  // as GetTablesFromDatabase lists it
  std::int64_t rows = 0;
  std::int64_t bytes = 0;  // with its indexes
};

struct ServerInfo {
  std::string product;  // "Microsoft SQL Server", "MySQL", "MariaDB"
  std::string version;
  std::optional<bool> is_encrypted = {};  // the connection; none where the server does not tell
};

/// One database server as the converter sees it. Operations report their failures themselves
/// (events, IRunHost) and return their failure value; exceptions are named below.
class IDatabase {
 public:
  virtual ~IDatabase() = default;

  /// Whole, for those who fill or read all of it; the accessors below are the same values one by
  /// one.
  virtual const ado::ConnectionSettings& Settings() const = 0;
  virtual void SetSettings(ado::ConnectionSettings settings) = 0;
  virtual const ConversionOptions& Options() const = 0;
  virtual void SetOptions(ConversionOptions options) = 0;

  /// On a MySQL endpoint both throw RunTimeError 11, "MySql", "Invalid Property Access".
  bool WinNTAuthentication() const;
  void SetWinNTAuthentication(bool value);
  const std::string& UserId() const { return Settings().user_id; }
  void SetUserId(std::string value);
  const std::string& Password() const { return Settings().password; }
  void SetPassword(std::string value);
  std::int32_t PortNo() const { return Settings().port; }
  void SetPortNo(std::int32_t value);
  const std::string& DbName() const { return Settings().database; }
  void SetDbName(std::string value);
  const std::string& Server() const { return Settings().server; }
  void SetServer(std::string value);
  bool CopyTableContent() const { return Options().copy_table_content; }
  void SetCopyTableContent(bool value);
  void SetConvertMode(std::int16_t value);
  std::int16_t ConvertMode() const { return Options().convert_mode; }
  void SetReplaceSpaceWithUnderscore(bool value);
  bool ReplaceSpaceWithUnderscore() const { return Options().replace_space_with_underscore; }
  bool ConvertRelationships() const { return Options().convert_relationships; }
  void SetConvertRelationships(bool value);

  /// A new connection, owned by the caller, with `DbName` selected on request. None when it could
  /// not be opened; the failure has then been reported.
  virtual std::unique_ptr<ado::Connection> OpenConnection(bool with_db_name) = 0;
  /// The server's databases in its order, or none.
  virtual std::optional<NameList> GetDatabases() = 0;
  /// True when the server created the database. Leaves DbName alone.
  virtual bool CreateDatabase(const std::string& name) = 0;
  /// The tables of DbName in the catalog's order, or none when no connection could be opened.
  /// Throws RunTimeError when the catalog cannot be read.
  virtual std::optional<NameList> GetTablesFromDatabase() = 0;
  /// The sizes of the tables of DbName, by one question; none where the server does not tell them.
  /// Reports no failure.
  virtual std::vector<TableSize> GetTableSizes() { return {}; }
  /// What the server is; none where it does not tell. Reports no failure.
  virtual std::optional<ServerInfo> GetServerInfo() { return {}; }
  /// Compares the listed tables with those of the database DbName of `dest` that they would be
  /// converted to: by the options, but values unless counts are asked for. Changes nothing. Tells
  /// its outcome by events.
  virtual void CompareWithDest(IDatabase& dest, const NameList& src_tables) = 0;
  /// Converts the listed tables into the database DbName of `dest`. Tells its outcome by events.
  virtual void TransferToDest(IDatabase& dest, const NameList& src_tables) = 0;

  /// Does what TransferToDest would do but for what changes the destination: `statements` takes
  /// the statements that would be sent, in their order, and comments ("-- ...") between them. Tells
  /// its outcome by events, as a transfer would.
  virtual void RehearseTransfer(IDatabase& dest, const NameList& src_tables,
                                const ado::StatementSink& statements) = 0;

  virtual ServerKind Kind() const = 0;
  /// Exactly one listener at a time, not owned; null takes it away.
  virtual void SetListener(IConversionListener* listener) = 0;
};

}  // namespace dorvane
