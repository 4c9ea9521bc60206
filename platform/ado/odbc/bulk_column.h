#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/odbc/bulk_functions.h"
#include "platform/ado/value.h"

namespace dorvane::ado::odbc {

/// A column of a table that rows are loaded into, as the server describes it.
struct BulkColumnFacts {
  std::string name;
  std::string type;            // the server's own name
  int ordinal = 0;             // from 1
  std::int64_t max_bytes = 0;  // -1: no limit
  int precision = 0;
  int scale = 0;
  bool is_nullable = false;
  bool is_identity = false;
  bool is_computed = false;
  int code_page = 0;  // of a text column
};

/// One column's cell. It takes values only that arrive as an INSERT statement's literals would,
/// without any conversion that could go another way on either side.
class BulkColumn {
 public:
  /// Nothing for a type that is not loaded.
  static std::optional<BulkColumn> Of(const BulkColumnFacts& facts);

  CellType Type() const { return type_; }
  int Ordinal() const { return ordinal_; }
  const char* Cell() const { return cell_.data(); }

  bool Takes(const Value& value) const;
  /// Puts a value that it takes into the cell.
  void Put(const Value& value);

 private:
  BulkColumn(const BulkColumnFacts& facts, CellType type, bool is_wide, bool is_padded);

  bool TakesInteger(const Value& value) const;
  bool TakesText(std::string_view text) const;
  /// What a value of a column of fixed size lacks of it, in bytes of the cell.
  std::size_t PaddingOf(std::string_view bytes) const;
  void PutBytes(std::string_view bytes);
  template <typename T>
  void PutFixed(const T& value);

  CellType type_;
  int ordinal_;
  bool is_nullable_;
  std::size_t most_bytes_;  // of a value on the server
  int precision_;
  int scale_;
  bool is_wide_;    // UTF-16 on the server
  bool is_padded_;  // every value has the greatest size
  std::string_view moment_form_;
  bool is_windows_1252_;  // of text that is not wide
  std::vector<char> cell_;
};

}  // namespace dorvane::ado::odbc
