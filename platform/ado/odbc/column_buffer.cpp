#include "platform/ado/odbc/column_buffer.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "platform/ado/odbc/diagnostics.h"
#include "platform/ado/types.h"

namespace dorvane::ado::odbc {

namespace {

constexpr std::size_t kFirstPart = 64 * 1024;
/// A buffer that one large value made larger is given back with the value.
constexpr std::size_t kKeptLongBuffer = 1024 * 1024;

}  // namespace

ColumnBuffer::ColumnBuffer(FetchType fetch_type, std::int64_t size, bool is_long, std::string name)
    : fetch_type_(fetch_type), is_long_(is_long), name_(std::move(name)) {
  const FetchBinding binding = BindingOf(fetch_type_);
  c_type_ = binding.c_type;
  terminator_ = binding.terminator;
  element_size_ = binding.unit == 0 ? binding.fixed_size : size * binding.unit + binding.terminator;
}

void ColumnBuffer::Bind(SQLHANDLE statement, SQLUSMALLINT column, std::size_t rows) {
  data_.resize(rows * element_size_);
  indicators_.resize(rows);
  CheckStatement(SQLBindCol(statement, column, c_type_, data_.data(),
                            static_cast<SQLLEN>(element_size_), indicators_.data()),
                 statement);
}

void ColumnBuffer::Get(SQLHANDLE statement, SQLUSMALLINT column) {
  indicators_.resize(1);
  if (is_long_) {
    GetDataInParts(statement, column);
    return;
  }
  data_.resize(element_size_);
  CheckStatement(SQLGetData(statement, column, c_type_, data_.data(),
                            static_cast<SQLLEN>(data_.size()), indicators_.data()),
                 statement);
}

void ColumnBuffer::GetDataInParts(SQLHANDLE statement, SQLUSMALLINT column) {
  if (data_.size() < kFirstPart) data_.resize(kFirstPart);
  std::size_t fetched = 0;
  while (true) {
    const std::size_t room = data_.size() - fetched;
    SQLLEN length = 0;  // of what was left before this part
    const SQLRETURN result = SQLGetData(statement, column, c_type_, data_.data() + fetched,
                                        static_cast<SQLLEN>(room), &length);
    if (result == SQL_NO_DATA) break;
    CheckStatement(result, statement);
    if (length == SQL_NULL_DATA) {
      indicators_[0] = SQL_NULL_DATA;
      return;
    }
    const bool is_last = length >= 0 && static_cast<std::size_t>(length) + terminator_ <= room;
    if (is_last) {
      fetched += length;
      break;
    }
    fetched += room - terminator_;
    const std::size_t more = length > 0 ? length + terminator_ : data_.size();
    data_.resize(fetched + std::max(more, kFirstPart));
  }
  indicators_[0] = static_cast<SQLLEN>(fetched);
}

Value ColumnBuffer::Convert(std::size_t row, Arena& storage) {
  const SQLLEN length = indicators_[row];
  if (length == SQL_NULL_DATA) return Null{};
  const std::size_t room = (is_long_ ? data_.size() : element_size_) - terminator_;
  if (length < 0 || static_cast<std::size_t>(length) > room) {
    throw LibraryError(hresult::kDataOverflow,
                       fmt::format("The driver cut off a value of the column \"{}\".", name_));
  }
  const char* const element = data_.data() + (is_long_ ? 0 : row * element_size_);
  const Value value = ToValue(fetch_type_, {element, static_cast<std::size_t>(length)}, storage);
  if (is_long_ && data_.size() > kKeptLongBuffer) data_ = {};
  return value;
}

}  // namespace dorvane::ado::odbc
