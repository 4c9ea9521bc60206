#pragma once

#include <sql.h>
#include <sqlext.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/ado/odbc/fetch_type.h"
#include "platform/ado/row_block.h"
#include "platform/ado/value.h"

namespace dorvane::ado::odbc {

/// The fetch buffer of one result column: a number of elements of fixed size with their length
/// indicators or, for values without a limit, one element that grows with the value.
class ColumnBuffer {
 public:
  /// `size` is the declared size in characters or bytes; it is not used for a long column.
  ColumnBuffer(FetchType fetch_type, std::int64_t size, bool is_long, std::string name);

  bool IsLong() const { return is_long_; }
  /// Bytes that one row takes in the buffer of a column that is not long.
  std::size_t RowBytes() const { return element_size_ + sizeof(SQLLEN); }

  /// Makes room for `rows` rows and binds the column, which must not be long, to it. Throws
  /// ProviderError.
  void Bind(SQLHANDLE statement, SQLUSMALLINT column, std::size_t rows);
  /// Fetches the current row's value, however long, as row 0. Throws ProviderError.
  void Get(SQLHANDLE statement, SQLUSMALLINT column);

  /// The value of a fetched row, a long one once only; its text and bytes are put into `storage`.
  /// Throws ProviderError when the driver cut it.
  Value Convert(std::size_t row, Arena& storage);

 private:
  void GetDataInParts(SQLHANDLE statement, SQLUSMALLINT column);

  FetchType fetch_type_;
  SQLSMALLINT c_type_;
  std::size_t terminator_;
  std::size_t element_size_;
  bool is_long_;
  std::string name_;
  std::vector<char> data_;
  std::vector<SQLLEN> indicators_;
};

}  // namespace dorvane::ado::odbc
