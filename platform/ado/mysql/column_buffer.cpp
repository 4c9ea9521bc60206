#include "platform/ado/mysql/column_buffer.h"

#include "platform/ado/mysql/errors.h"
#include "platform/ado/mysql/types.h"

namespace dorvane::ado::mysql {

namespace {

constexpr unsigned kMaxHours = 838;  // of a TIME

/// The client library passes on whatever numbers came.
bool IsInRange(const MYSQL_TIME& time, bool is_time) {
  const bool is_clock_time = time.minute < 60 && time.second < 60 && time.second_part < 1'000'000;
  if (is_time) return is_clock_time && time.day * std::uint64_t{24} + time.hour <= kMaxHours;
  return is_clock_time && time.year <= 9999 && time.month <= 12 && time.day <= 31 &&
         time.hour < 24 && time.neg == 0;
}

}  // namespace

DateTime ToDateTime(const MYSQL_TIME& time, DataType type) {
  const bool is_time = type == DataType::DBTime;
  if (!IsInRange(time, is_time)) throw MalformedPacket("a date or time out of range");
  DateTime value;
  if (!is_time) {
    value.year = static_cast<std::int16_t>(time.year);
    value.month = static_cast<std::uint8_t>(time.month);
    value.day = static_cast<std::uint8_t>(time.day);
  }
  // A time beyond a day may come as days and hours.
  const unsigned hours = (is_time ? time.day * 24 : 0) + time.hour;
  const int sign = time.neg != 0 ? -1 : 1;
  value.seconds = sign * static_cast<int>((hours * 60 + time.minute) * 60 + time.second);
  value.nanoseconds = sign * static_cast<int>(time.second_part) * 1000;
  return value;
}

ColumnBuffer::ColumnBuffer(const MYSQL_FIELD& field, const FieldInfo& info)
    : wire_type_(field.type), type_(info.type), kind_(KindOf(field, info.type)) {}

ColumnBuffer::Kind ColumnBuffer::KindOf(const MYSQL_FIELD& field, DataType type) {
  const bool is_unsigned = (field.flags & UNSIGNED_FLAG) != 0;
  switch (field.type) {
    case MYSQL_TYPE_TINY:
    case MYSQL_TYPE_SHORT:
    case MYSQL_TYPE_INT24:
    case MYSQL_TYPE_LONG:
    case MYSQL_TYPE_LONGLONG:
      return is_unsigned ? Kind::Unsigned : Kind::Signed;
    case MYSQL_TYPE_YEAR:
      return Kind::Signed;
    case MYSQL_TYPE_FLOAT:
      return Kind::Single;
    case MYSQL_TYPE_DOUBLE:
      return Kind::Double;
    case MYSQL_TYPE_DECIMAL:
    case MYSQL_TYPE_NEWDECIMAL:
      return Kind::Decimal;
    case MYSQL_TYPE_DATE:
    case MYSQL_TYPE_NEWDATE:
    case MYSQL_TYPE_TIME:
    case MYSQL_TYPE_DATETIME:
    case MYSQL_TYPE_TIMESTAMP:
      return Kind::Temporal;
    default:
      break;
  }
  if (type == DataType::Boolean) return Kind::Bit;
  return IsBinary(type) ? Kind::Bytes : Kind::Text;
}

MYSQL_BIND ColumnBuffer::Bind() {
  MYSQL_BIND bind = {};
  bind.length = &length_;
  bind.is_null = &is_null_;
  bind.error = &is_truncated_;
  switch (kind_) {
    case Kind::Signed:
    case Kind::Unsigned:
      bind.buffer_type = MYSQL_TYPE_LONGLONG;
      bind.buffer = &signed_;
      bind.is_unsigned = kind_ == Kind::Unsigned;
      break;
    case Kind::Single:
      bind.buffer_type = MYSQL_TYPE_FLOAT;
      bind.buffer = &single_;
      break;
    case Kind::Double:
      bind.buffer_type = MYSQL_TYPE_DOUBLE;
      bind.buffer = &double_;
      break;
    case Kind::Temporal:
      bind.buffer_type = wire_type_ == MYSQL_TYPE_NEWDATE ? MYSQL_TYPE_DATE : wire_type_;
      bind.buffer = &time_;
      bind.buffer_length = sizeof time_;
      break;
    default:
      bind.buffer_type = MYSQL_TYPE_STRING;
      break;
  }
  return bind;
}

Value ColumnBuffer::Convert(MYSQL_STMT* statement, unsigned column, Arena& storage) const {
  if (is_null_ != 0) return Null{};
  switch (kind_) {
    case Kind::Signed:
      return signed_;
    case Kind::Unsigned:
      return unsigned_;
    case Kind::Single:
      return single_;
    case Kind::Double:
      return double_;
    case Kind::Temporal:
      return ToDateTime(time_, type_);
    case Kind::Decimal:
      return Decimal{Fetch(statement, column, storage)};
    case Kind::Bytes:
      return Binary{Fetch(statement, column, storage)};
    case Kind::Bit:
      return Fetch(statement, column, storage).find_first_not_of('\0') != std::string_view::npos;
    case Kind::Text:
      break;
  }
  return Fetch(statement, column, storage);
}

std::string_view ColumnBuffer::Fetch(MYSQL_STMT* statement, unsigned column, Arena& storage) const {
  unsigned long length = length_;
  if (length == 0) return {};
  char* bytes = storage.Allocate(length);
  my_bool is_null = 0;
  my_bool is_truncated = 0;
  MYSQL_BIND bind = {};
  bind.buffer_type = MYSQL_TYPE_STRING;
  bind.buffer = bytes;
  bind.buffer_length = length;
  bind.length = &length;
  bind.is_null = &is_null;
  bind.error = &is_truncated;
  if (mysql_stmt_fetch_column(statement, &bind, column, 0) != 0) {
    ThrowError(statement, statement->mysql);
  }
  return {bytes, length};
}

}  // namespace dorvane::ado::mysql
