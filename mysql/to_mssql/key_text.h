#pragma once

#include <string>
#include <vector>

#include "endpoint/database.h"
#include "platform/ado/connection.h"

namespace dorvane::to_mssql {

/// A key as SHOW INDEX describes it, its rows put together.
struct KeyText {
  std::string name;
  bool is_unique = false;
  std::string type = {};    // "BTREE", "FULLTEXT", ...
  bool has_prefix = false;  // covers the beginning of a column only
  NameList columns = {};    // empty names for expressions

  bool IsPrimary() const { return name == "PRIMARY"; }
};

/// The keys of a SHOW INDEX result, the primary one first. Throws RunTimeError.
std::vector<KeyText> ReadKeys(ado::Recordset rows);

}  // namespace dorvane::to_mssql
