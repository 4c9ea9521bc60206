#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "endpoint/definition_statement.h"
#include "platform/ado/catalog_types.h"
#include "platform/ado/errors.h"
#include "platform/ado/table_name.h"

namespace dorvane {

/// What a rehearsal asks of the destination's server, and what it says in its words. Each kind of
/// server has its own. Everything throws RunTimeError.
class IRehearsedServer {
 public:
  virtual ~IRehearsedServer() = default;

  /// The statements that make a temporary table of that quoted name, which takes and refuses rows
  /// as a table of the destination does, foreign keys and triggers left aside: the first its
  /// columns, the others a key or a check each. `gives_identity`: rows bring the values of its
  /// identity column along.
  virtual std::vector<std::string> CopyOf(const ado::TableName& table, const std::string& copy,
                                          bool gives_identity) = 0;
  /// The names of the table's checks by those that the copy has for them, where they differ.
  virtual std::map<std::string, std::string> RenamedChecks(const ado::TableName& table,
                                                           const std::string& copy) = 0;
  /// The statement that makes a temporary table of that quoted name with some of the columns.
  virtual std::string CopyOfColumns(const ado::TableName& table, const std::string& copy,
                                    const std::vector<std::string>& columns) = 0;
  /// The columns whose values the server gives by itself, and other ones in a copy.
  virtual std::vector<std::string> GivenColumns(const ado::TableName& table) = 0;
  virtual bool HasTriggers(const ado::TableName& table) = 0;
  /// How a primary key over these columns is refused since rows of the table share it; none when
  /// they do not.
  virtual std::optional<ado::ProviderError> SharedKey(const ado::TableName& table,
                                                      const std::string& name,
                                                      const std::vector<std::string>& columns) = 0;
  /// How a row is refused for want of the row that it refers to by this key of the table.
  virtual ErrorSummary LackOfParent(const ado::TableName& table, const ado::Key& key) = 0;
  /// How the key is refused that rows of the table have no such rows for.
  virtual ErrorSummary LackOfParents(const ado::TableName& table, const ado::Key& key) = 0;
  /// What is said of a statement that needs this right on the table; none when the login has the
  /// right, or the server does not tell. Changes nothing.
  virtual std::optional<ado::ProviderError> Denial(TableRight right,
                                                   const ado::TableName& table) = 0;
};

}  // namespace dorvane
