#include "mssql/to_mysql/row_faults.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace dorvane::to_mysql {

namespace {

struct FaultOfNumber {
  std::int32_t native_error;
  RowFault fault;
};

// Numbers that tell more than their SQLSTATE, or whose SQLSTATE differs between servers.
constexpr std::array kByNumber{
    FaultOfNumber{1062, RowFault::Duplicate},   // duplicate entry
    FaultOfNumber{1022, RowFault::Duplicate},   // duplicate key
    FaultOfNumber{1586, RowFault::Duplicate},   // duplicate entry, with the key's name
    FaultOfNumber{1366, RowFault::Characters},  // text outside the character set, or no number
    FaultOfNumber{1300, RowFault::Characters},  // no character string of that set
    FaultOfNumber{3854, RowFault::Characters},  // a text that cannot be converted (MySQL)
    FaultOfNumber{3988, RowFault::Characters},  // likewise
    FaultOfNumber{1048, RowFault::Refused},     // NULL in a NOT NULL column
    FaultOfNumber{1364, RowFault::Refused},     // a column without a default was left out
    FaultOfNumber{1452, RowFault::Refused},     // no such parent
    FaultOfNumber{1264, RowFault::Refused},     // out of range
    FaultOfNumber{1265, RowFault::Refused},     // data truncated
    FaultOfNumber{1292, RowFault::Refused},     // no such date or number
    FaultOfNumber{1406, RowFault::Refused},     // data too long
    FaultOfNumber{1411, RowFault::Refused},     // no such value
    FaultOfNumber{3140, RowFault::Refused},     // no JSON
    FaultOfNumber{3819, RowFault::Refused},     // a check constraint (MySQL)
    FaultOfNumber{4025, RowFault::Refused},     // a check constraint (MariaDB)
    FaultOfNumber{1526, RowFault::Refused},     // no partition for the row
    FaultOfNumber{1153, RowFault::Refused},     // larger than a packet
    FaultOfNumber{2020, RowFault::Refused},     // likewise, as the client says it
    FaultOfNumber{1118, RowFault::Refused},     // larger than a row may be
    FaultOfNumber{1713, RowFault::Refused},     // likewise, for the undo log
};

// Classes of SQLSTATEs: data exceptions, constraints, a view's check option, a trigger's own.
constexpr std::array<std::string_view, 4> kRowStates{"22", "23", "44", "45"};

}  // namespace

RowFault FaultOf(const ado::Error& error) {
  const auto* row = std::ranges::find(kByNumber, error.native_error, &FaultOfNumber::native_error);
  if (row != kByNumber.end()) return row->fault;
  const std::string_view state = std::string_view(error.sql_state).substr(0, 2);
  const bool is_known = std::ranges::find(kRowStates, state) != kRowStates.end();
  return is_known ? RowFault::Refused : RowFault::None;
}

}  // namespace dorvane::to_mysql
