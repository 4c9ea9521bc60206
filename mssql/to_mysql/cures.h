#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "endpoint/table_definition.h"
#include "platform/ado/catalog_types.h"

namespace dorvane::to_mysql {

/// The digits behind the point that a DECIMAL of MySQL has at most.
inline constexpr int kMostDecimalScale = 30;

/// A Create Table statement that MySQL refused.
struct TableRefusal {
  std::int32_t native_error;
  std::string_view words;                  // the server's
  const std::vector<ado::Index>& indexes;  // the source table's
  std::string_view primary_key = {};       // as a constraint of the statement; empty: none
  /// Whether a column's values need all of its digits behind the point.
  std::function<bool(const std::string& column)> has_fine_decimals = [](const std::string&) {
    return true;
  };
};

/// Changes the definition so that the server may take it, and notes what was changed. False when
/// there is no cure for the number, or none any more.
bool CureDefinition(TableDefinition& table, const TableRefusal& refusal);

/// True for a type that MySQL keeps outside the row: TEXT and BLOB of every length.
bool IsLongType(std::string_view type);

}  // namespace dorvane::to_mysql
