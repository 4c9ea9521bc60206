#pragma once

#include <sql.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/odbc/logon.h"

namespace dorvane::ado::odbc {

/// One row of a catalog function, its values by the names that ODBC gives them.
class CatalogRow {
 public:
  explicit CatalogRow(std::map<std::string, std::string> values) : values_(std::move(values)) {}

  /// Empty for NULL and for a column that the driver does not have.
  std::string Text(const std::string& name) const;
  std::optional<std::string> OptionalText(const std::string& name) const;
  std::optional<int> OptionalNumber(const std::string& name) const;
  /// 0 for NULL.
  int Number(const std::string& name) const { return OptionalNumber(name).value_or(0); }

 private:
  std::map<std::string, std::string> values_;  // without the NULLs
};

/// Calls a catalog function, or runs a query, on a statement handle; returns what that returned.
using CatalogCall = std::function<SQLRETURN(SQLHANDLE)>;

/// Makes the call on a fresh statement and reads all of its rows. Throws ProviderError.
std::vector<CatalogRow> ReadCatalog(const std::shared_ptr<Logon>& logon, const CatalogCall& call);

/// The rows of one table: of all rows those whose `name_column` is exactly `table`, of these the
/// ones of a single schema, dbo's if it has any.
std::vector<CatalogRow> RowsOfTable(std::vector<CatalogRow> rows, const std::string& name_column,
                                    const std::string& schema_column, const std::string& table);

/// A search pattern that finds the name, and perhaps others of its length: drivers do not agree on
/// how the pattern characters in a name are quoted, so any character may stand in their place.
std::u16string AsPattern(std::string_view name);

}  // namespace dorvane::ado::odbc
