#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "endpoint/row_copier.h"
#include "platform/ado/row_block.h"
#include "platform/ado/types.h"

namespace dorvane {

/// Gives all rows of a table from the first one on, each time it is called.
using TableReader = std::function<BlockSource()>;

/// A row that the two tables do not have alike.
struct RowDifference {
  enum class Kind { Missing, Additional, Different };
  Kind kind = Kind::Missing;
  std::vector<std::string> key = {};      // its values' texts; those of the whole row without a key
  std::vector<std::size_t> columns = {};  // that differ, by position; of a different row only
};

/// What came of a comparison.
struct ComparisonResult {
  std::int64_t source_rows = 0;
  std::int64_t destination_rows = 0;
  std::int64_t missing = 0;                  // rows of the source that the destination has not
  std::int64_t additional = 0;               // rows of the destination that the source has not
  std::int64_t different = 0;                // rows of one key and other values
  std::vector<RowDifference> examples = {};  // the first few that were found

  bool IsEqual() const { return missing == 0 && additional == 0 && different == 0; }
};

/// The tables that are compared.
struct ComparedTables {
  std::vector<ado::DataType> types;  // of the destination's columns, whose forms decide
  std::vector<std::size_t> key;      // positions of its columns; empty: the whole row
  TableReader source;                // values in the form that the destination takes
  TableReader destination;
};

/// Compares two tables row by row whatever order their rows come in, in memory that does not grow
/// with them. Both are read once, at the same time, into sums of row hashes by hash of key; only
/// where sums differ the rows behind them are read again. `keep_on` is called often in this thread,
/// with the number of rows read from the destination; when it says no the comparison ends and has
/// no result. The source is read in a thread of its own. Throws what the readers throw.
std::optional<ComparisonResult> CompareTables(
    const ComparedTables& tables, const std::function<bool(std::int64_t rows)>& keep_on);

}  // namespace dorvane
