#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/ado/table_name.h"
#include "platform/ado/types.h"

namespace dorvane::ado {

struct TableInfo {
  TableName name;
  std::string type;  // "TABLE", "VIEW", "SYSTEM TABLE", ...
};

/// How an identity column counts: decimal numbers, which may be longer than any integer type; empty
/// where the catalog tells only that it does.
struct Identity {
  std::string seed;
  std::string increment;
  std::string last;  // the number given last; empty before the first one
};

/// What a server's own catalog tells of a column beside what every catalog does; most of it SQL
/// Server's only.
struct ColumnKind {
  std::string base_type;   // the server's name of the type, an alias resolved; empty: not told
  std::string alias_type;  // "schema.name" of the user's name for that type
  std::string collation;   // empty for what is no text
  std::string computed;   // the definition, "([a]+[b])"; empty for a column that is stored as given
  bool is_given = false;  // its values are the server's own: computed, a period's, a row version
  bool is_persisted = false;  // a computed column that is stored
  bool is_masked = false;
  bool is_hidden = false;    // "select *" leaves it out
  int generated_always = 0;  // 0: not; 1, 2: a period's start and end; further ones of ledgers
};

/// A column as the catalog and the column schema describe it.
struct Column : FieldInfo {
  std::uint32_t attributes = 0;  // kColumnNullable, kColumnFixed
  /// The value of the default: parentheses removed, string literals unquoted, the current time as
  /// "getdate()". Nothing where there is no default or where it is any other expression.
  std::optional<std::string> default_value;
  /// A default that default_value has nothing for, as the server writes it; empty without one.
  std::string other_default;
  /// Of an identity column, where the catalog tells: see TableDetails.
  std::optional<Identity> identity = std::nullopt;
  ColumnKind kind = {};
};

struct Index {
  std::string name;
  bool primary_key = false;
  bool unique = false;
  std::vector<std::string> columns;  // in key order
  bool is_descending = false;        // in one of them, where the catalog tells
  std::string filter = {};           // the condition of the rows in it; empty: every row
};

enum class KeyType { Primary = 1, Foreign = 2, Unique = 3 };
enum class RuleType { None = 0, Cascade = 1, SetNull = 2, SetDefault = 3 };

struct KeyColumn {
  std::string name;
  std::string related_column;  // foreign keys only
  bool operator==(const KeyColumn&) const = default;
};

struct Key {
  std::string name;
  KeyType type = KeyType::Primary;
  TableName related_table = {};  // foreign keys only
  RuleType delete_rule = RuleType::None;
  RuleType update_rule = RuleType::None;
  std::vector<KeyColumn> columns;  // in key order
  bool is_disabled = false;        // a foreign key that the server does not check
  bool is_trusted = true;          // every row has been checked against it
};

/// All that a catalog tells of one table at once, the identity column included.
struct TableDetails {
  std::vector<Column> columns;
  std::vector<Index> indexes;
  std::vector<Key> keys;
  /// Indexes that are none to make again, "index x was left out: it is disabled".
  std::vector<std::string> left_out;
};

}  // namespace dorvane::ado
