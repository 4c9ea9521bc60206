#include "mysql/to_mssql/row_faults.h"

#include <limits>
#include <string>

namespace dorvane::to_mssql {

namespace {

struct FaultOfError {
  std::int32_t first;  // the server's own numbers
  std::int32_t last;
  RowFault fault;
};
constexpr FaultOfError kRowFaults[] = {
    {220, 220, RowFault::Refused},      // overflow of a small integer type
    {232, 232, RowFault::Refused},      // overflow
    {235, 235, RowFault::Refused},      // text that is no money
    {241, 242, RowFault::Refused},      // text that is no date; a date out of range
    {244, 245, RowFault::Refused},      // text that is no number, or one too large
    {248, 248, RowFault::Refused},      // likewise
    {295, 296, RowFault::Refused},      // a date that smalldatetime has not
    {511, 511, RowFault::Refused},      // a row larger than a page
    {515, 515, RowFault::Refused},      // NULL in a NOT NULL column
    {517, 517, RowFault::Refused},      // a date out of range
    {547, 547, RowFault::Refused},      // a foreign key or a check
    {1946, 1946, RowFault::Refused},    // a key longer than an index takes
    {2601, 2601, RowFault::Duplicate},  // a unique index
    {2627, 2627, RowFault::Duplicate},  // a key
    {2628, 2628, RowFault::Refused},    // text too long, with its column
    {3609, 3609, RowFault::Refused},    // a trigger that rolled back
    {8114, 8115, RowFault::Refused},    // a value that does not convert; overflow
    {8152, 8152, RowFault::Refused},    // text too long
    {8169, 8169, RowFault::Refused},    // text that is no uniqueidentifier
    {9400, 9499, RowFault::Refused},    // text that is no XML
    {50000, std::numeric_limits<std::int32_t>::max(), RowFault::Refused},  // a trigger's own
};

}  // namespace

RowFault FaultOf(std::int32_t native_error) {
  for (const FaultOfError& row : kRowFaults) {
    if (native_error >= row.first && native_error <= row.last) return row.fault;
  }
  return RowFault::None;
}

bool MayComeRight(const ado::Error& error) {
  constexpr std::int32_t kConstraintError = 547;
  return error.native_error == kConstraintError &&
         error.description.find("FOREIGN KEY") != std::string::npos;
}

}  // namespace dorvane::to_mssql
