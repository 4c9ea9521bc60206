#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "endpoint/events.h"
#include "endpoint/run_host.h"
#include "platform/ado/connection.h"

namespace dorvane {

/// Table or database names in order, as the server's catalog spells them (UTF-8).
using NameList = std::vector<std::string>;

enum class ServerKind { MsSql, MySql };

/// What to do with a destination table of the same name. Kept as a number: other values behave as
/// each operation says.
namespace convert_mode {
inline constexpr std::int16_t kMerge = 1;
inline constexpr std::int16_t kOverwrite = 2;
}  // namespace convert_mode

/// One database server as the converter sees it. The conversion options are read from the source
/// endpoint only. Operations report their failures themselves (events, IRunHost) and return their
/// failure value; exceptions are named below.
class IDatabase {
 public:
  virtual ~IDatabase() = default;

  /// On a MySQL endpoint both throw RunTimeError 11, "MySql", "Invalid Property Access".
  virtual bool WinNTAuthentication() const = 0;
  virtual void SetWinNTAuthentication(bool value) = 0;
  virtual const std::string& UserId() const = 0;
  virtual void SetUserId(std::string value) = 0;
  virtual const std::string& Password() const = 0;
  virtual void SetPassword(std::string value) = 0;
  virtual std::int16_t PortNo() const = 0;
  virtual void SetPortNo(std::int16_t value) = 0;
  virtual const std::string& DbName() const = 0;
  virtual void SetDbName(std::string value) = 0;
  virtual const std::string& Server() const = 0;
  virtual void SetServer(std::string value) = 0;
  virtual bool CopyTableContent() const = 0;
  virtual void SetCopyTableContent(bool value) = 0;
  virtual void SetConvertMode(std::int16_t value) = 0;
  virtual std::int16_t ConvertMode() const = 0;
  virtual void SetReplaceSpaceWithUnderscore(bool value) = 0;
  virtual bool ReplaceSpaceWithUnderscore() const = 0;
  virtual bool ConvertRelationships() const = 0;
  virtual void SetConvertRelationships(bool value) = 0;

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
  /// Converts the listed tables into the database DbName of `dest`. Tells its outcome by events.
  virtual void TransferToDest(IDatabase& dest, const NameList& src_tables) = 0;

  virtual ServerKind Kind() const = 0;
  /// Exactly one listener at a time, not owned; null takes it away.
  virtual void SetListener(IConversionListener* listener) = 0;
};

}  // namespace dorvane
