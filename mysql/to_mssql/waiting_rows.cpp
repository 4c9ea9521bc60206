#include "mysql/to_mssql/waiting_rows.h"

#include <algorithm>
#include <utility>

namespace dorvane::to_mssql {

namespace {

// Of statements: memory must not grow with the tables.
constexpr std::size_t kMostBytes = 64 << 20;

bool IsStored(ado::Connection& destination, WaitingRows::Row& row) {
  try {
    ExecuteOn(destination, row.statement);
    if (!row.after.empty()) ExecuteOn(destination, row.after);
    return true;
  } catch (const DestinationFailure& failure) {
    row.reason = {failure.NativeError(), failure.Summary().description};
    if (!row.after.empty()) TryExecute(destination, row.after);
    return false;
  }
}

}  // namespace

bool WaitingRows::Add(Row row) {
  if (bytes_ + row.statement.size() > kMostBytes) return false;
  bytes_ += row.statement.size();
  rows_.push_back(std::move(row));
  return true;
}

std::vector<WaitingRows::Refusal> WaitingRows::Store(ado::Connection& destination) {
  // To and fro, since most parents stand on one side of their children.
  for (int idle_rounds = 0; idle_rounds < 2 && !rows_.empty();) {
    rows_.reverse();
    const auto stored = std::erase_if(rows_, [&](Row& row) { return IsStored(destination, row); });
    idle_rounds = stored > 0 ? 0 : idle_rounds + 1;
  }
  std::vector<Refusal> refusals;
  for (Row& row : rows_) {
    auto refusal = std::ranges::find(refusals, row.table, &Refusal::table);
    if (refusal == refusals.end()) {
      refusal = refusals.insert(refusals.end(), {row.table, 0, row.position, row.reason});
    }
    ++refusal->rows;
    if (row.position >= refusal->first_position) continue;
    refusal->first_position = row.position;
    refusal->first_reason = std::move(row.reason);
  }
  rows_.clear();
  bytes_ = 0;
  return refusals;
}

}  // namespace dorvane::to_mssql
