#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/odbc/bulk_column.h"
#include "platform/ado/odbc/bulk_functions.h"
#include "platform/ado/odbc/logon.h"
#include "platform/ado/provider.h"

namespace dorvane::ado::odbc {

/// Loads rows by the server's bulk protocol, each call of Insert all of its rows or none. Values
/// come in the forms that the column's type has in a result.
class BulkWriter : public TableWriter {
 public:
  /// Throws ProviderError when the driver or the server does not load into this table, or into all
  /// of its columns but the ones named.
  BulkWriter(std::shared_ptr<Logon> logon, std::string_view table,
             const std::vector<std::string>& columns);

  bool Takes(std::span<const Value> row) const override;
  void Insert(const RowBlock& rows, std::size_t first, std::size_t count) override;

 private:
  void Load(const RowBlock& rows, std::size_t first, std::size_t count);
  void SendRows(const RowBlock& rows, std::size_t first, std::size_t count);

  std::shared_ptr<Logon> logon_;
  std::unique_ptr<BulkFunctions> functions_;
  std::u16string table_;
  std::vector<BulkColumn> columns_;
  bool keeps_identity_ = false;
};

}  // namespace dorvane::ado::odbc
