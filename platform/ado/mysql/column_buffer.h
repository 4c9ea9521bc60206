#pragma once

#include <mariadb/mysql.h>

#include <cstdint>

#include "platform/ado/row_block.h"
#include "platform/ado/types.h"
#include "platform/ado/value.h"

namespace dorvane::ado::mysql {

/// Where the client library puts one column of the current row. A value without a fixed size stays
/// in the library's packet until its length is known and it is fetched into a block.
class ColumnBuffer {
 public:
  ColumnBuffer(const MYSQL_FIELD& field, const FieldInfo& info);

  /// A binding to this buffer, which must not move as long as it is in use.
  MYSQL_BIND Bind();

  /// The value of the statement's current row, in which this is the column of that number, from 0.
  /// Text and bytes are put into `storage`. Throws ProviderError.
  Value Convert(MYSQL_STMT* statement, unsigned column, Arena& storage) const;

 private:
  enum class Kind { Signed, Unsigned, Single, Double, Temporal, Decimal, Bit, Text, Bytes };

  static Kind KindOf(const MYSQL_FIELD& field, DataType type);
  std::string_view Fetch(MYSQL_STMT* statement, unsigned column, Arena& storage) const;

  enum_field_types wire_type_;
  DataType type_;
  Kind kind_;
  unsigned long length_ = 0;
  my_bool is_null_ = 0;
  my_bool is_truncated_ = 0;
  union {
    std::int64_t signed_ = 0;
    std::uint64_t unsigned_;
    float single_;
    double double_;
  };
  MYSQL_TIME time_ = {};
};

/// A date, a time or both as they travel. Throws ProviderError for what lies outside the ranges of
/// the server's types.
DateTime ToDateTime(const MYSQL_TIME& time, DataType type);

}  // namespace dorvane::ado::mysql
