#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "endpoint/row_copier.h"
#include "tests/conversions/script.h"

namespace dorvane::test {

/// A way of copying rows, as a script calls it. The blocks are short where they have their limits.
struct NamedWay {
  std::string_view name;
  CopyPlan plan = {};
  int tables_at_once = 1;
};
inline constexpr ado::BlockLimits kShortBlock{.rows = 1000, .bytes = 1 << 20};
inline constexpr NamedWay kWays[] = {{"blocks"},
                                     {"row by row", {CopyStrategy::RowByRow}},
                                     {"statements", {CopyStrategy::Statements}},
                                     {"short blocks", {CopyStrategy::Blocks, kShortBlock}},
                                     {"short statements", {CopyStrategy::Statements, kShortBlock}},
                                     {"four tables at once", {}, 4}};

/// Throws std::runtime_error for a name that none has.
const NamedWay& FindWay(const std::string& name);

/// What the first way left on the destination, by the lines of the steps that look.
using Remembered = std::map<int, Lines>;

/// Does the steps of a script in one way, in databases of its own, and expects what they say.
void RunScript(const Script& script, const NamedWay& way, Remembered& first);

}  // namespace dorvane::test
