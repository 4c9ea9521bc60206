#include "mysql/to_mssql/waiting_rows.h"

#include <algorithm>
#include <utility>

namespace dorvane {

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
  while (std::erase_if(rows_, [&](Row& row) { return IsStored(destination, row); }) > 0) {
  }
  std::vector<Refusal> refusals;
  for (Row& row : rows_) {
    auto refusal = std::ranges::find(refusals, row.table, &Refusal::table);
    if (refusal == refusals.end()) {
      refusals.push_back({row.table, 0, row.position, std::move(row.reason)});
      refusal = refusals.end() - 1;
    }
    ++refusal->rows;
  }
  rows_.clear();
  bytes_ = 0;
  return refusals;
}

}  // namespace dorvane
