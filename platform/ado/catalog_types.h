#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/ado/types.h"

namespace dorvane::ado {

struct TableInfo {
  std::string name;
  std::string type;  // "TABLE", "VIEW", "SYSTEM TABLE", ...
};

/// A column as the catalog and the column schema describe it.
struct Column : FieldInfo {
  std::uint32_t attributes = 0;  // kColumnNullable, kColumnFixed
  /// The value of the default: parentheses removed, string literals unquoted, the current time as
  /// "getdate()". Nothing where there is no default or where it is any other expression.
  std::optional<std::string> default_value;
  /// A default that default_value has nothing for, as the server writes it; empty without one.
  std::string other_default;
};

struct Index {
  std::string name;
  bool primary_key = false;
  bool unique = false;
  std::vector<std::string> columns;  // in key order
};

enum class KeyType { Primary = 1, Foreign = 2, Unique = 3 };
enum class RuleType { None = 0, Cascade = 1, SetNull = 2, SetDefault = 3 };

struct KeyColumn {
  std::string name;
  std::string related_column;  // foreign keys only
};

struct Key {
  std::string name;
  KeyType type = KeyType::Primary;
  std::string related_table;  // foreign keys only
  RuleType delete_rule = RuleType::None;
  RuleType update_rule = RuleType::None;
  std::vector<KeyColumn> columns;  // in key order
};

}  // namespace dorvane::ado
