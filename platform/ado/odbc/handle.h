#pragma once

#include <sql.h>
#include <sqlext.h>

#include <utility>

namespace dorvane::ado::odbc {

/// An ODBC handle that is freed with its owner; empty when it could not be allocated. Move-only.
template <SQLSMALLINT kType>
class Handle {
 public:
  Handle() = default;
  explicit Handle(SQLHANDLE parent) {
    if (!SQL_SUCCEEDED(SQLAllocHandle(kType, parent, &handle_))) handle_ = SQL_NULL_HANDLE;
  }
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, SQLHANDLE{})) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Handle() {
    if (handle_ != SQL_NULL_HANDLE) SQLFreeHandle(kType, handle_);
  }

  SQLHANDLE Get() const { return handle_; }
  explicit operator bool() const { return handle_ != SQL_NULL_HANDLE; }

 private:
  SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

using Environment = Handle<SQL_HANDLE_ENV>;
using ConnectionHandle = Handle<SQL_HANDLE_DBC>;
using Statement = Handle<SQL_HANDLE_STMT>;

/// An integer in the pointer that attribute calls take.
inline SQLPOINTER AttributeValue(SQLULEN value) {
  return reinterpret_cast<SQLPOINTER>(value);  // NOLINT(performance-no-int-to-ptr)
}

}  // namespace dorvane::ado::odbc
