#include "mysql/to_mssql/waiting_rows.h"

#include <utility>

namespace dorvane::to_mssql {

namespace {

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
  if (bytes_ + row.statement.size() > most_bytes_) return false;
  bytes_ += row.statement.size();
  rows_.push_back(std::move(row));
  return true;
}

void WaitingRows::Join(WaitingRows& other) {
  rows_.splice(rows_.end(), other.rows_);
  bytes_ += std::exchange(other.bytes_, 0);
}

void WaitingRows::Store(ado::Connection& destination, std::map<std::string, RowAccount>& accounts) {
  // To and fro, since most parents stand on one side of their children.
  for (int idle_rounds = 0; idle_rounds < 2 && !rows_.empty();) {
    rows_.reverse();
    const auto stored = std::erase_if(rows_, [&](Row& row) { return IsStored(destination, row); });
    idle_rounds = stored > 0 ? 0 : idle_rounds + 1;
  }
  for (const Row& row : rows_) accounts[row.table].AddRefused(1, row.position, row.reason);
  rows_.clear();
  bytes_ = 0;
}

}  // namespace dorvane::to_mssql
