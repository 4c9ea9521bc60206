#pragma once

#include <string>
#include <vector>

#include "platform/ado/connection.h"

namespace dorvane {

/// How the rows of two SQL Server databases compare, table by table and column by column.
struct Comparison {
  std::vector<std::string> tables;  // "Employees: 5 rows, 12 columns equal"
  std::vector<std::string> losses;  // what the way there and back cannot keep, with the reason
  std::vector<std::string> faults;  // everything else that differs
};

/// Which types the way there and back went through. The exact ones lose nothing.
enum class WayBack { Classic, Exact };

/// Compares every table of `first` with the table of the same name in `last`, rows in the order of
/// the primary key. Throws RunTimeError when one of them cannot be read.
Comparison CompareDatabases(ado::Connection& first, ado::Connection& last,
                            WayBack way = WayBack::Classic);

}  // namespace dorvane
