#pragma once

#include <sql.h>

#include <memory>
#include <string>

namespace dorvane::ado::odbc {

/// What a cell holds.
enum class CellType {
  Bit,  // one byte, as is TinyInt
  TinyInt,
  SmallInt,
  Int,
  BigInt,
  Real,
  Float,
  Numeric,     // decimal text
  DateTime,    // days since 1900-01-01 and 300ths of a second, 32 bits each
  Moment,      // a date, a time or both as text, "yyyy-mm-dd hh:mm:ss.ffffff"
  Characters,  // UTF-8
  Bytes,
};

/// A driver's bulk copy functions on one connection: Init, Bind for each column, SendRow for each
/// row, Done. From Init to Done the connection takes nothing else. All throw ProviderError.
class BulkFunctions {
 public:
  virtual ~BulkFunctions() = default;
  /// `table` is a quoted reference. NULLs stay NULL, constraints are checked, triggers fire.
  virtual void Init(const std::u16string& table, bool keeps_identity) = 0;
  /// A cell is the length of its value in bytes (32 bits, -1 for NULL) and the value behind it;
  /// it is read by SendRow. Columns count from 1.
  virtual void Bind(const char* cell, CellType type, int column) = 0;
  virtual void SendRow() = 0;
  /// Has the rows stored, all or none.
  virtual void Done() = 0;
};

/// Those of the connection's driver; null when it has none.
std::unique_ptr<BulkFunctions> FindBulkFunctions(SQLHANDLE connection);

}  // namespace dorvane::ado::odbc
