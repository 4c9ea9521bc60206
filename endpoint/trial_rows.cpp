#include "endpoint/trial_rows.h"

#include <charconv>
#include <utility>

namespace dorvane {

namespace {

// What a trial keeps on the server's disk, and looks through again for each block.
constexpr std::size_t kMostRows = 50'000;
constexpr std::size_t kMostBytes = 64 << 20;

/// How a server refuses a row whose key is taken.
ErrorSummary KeyTaken(ServerKind server) {
  if (server == ServerKind::MySql) return {1062, "Duplicate entry for a key"};
  return {2627, "Violation of a key constraint. Cannot insert duplicate key."};
}

}  // namespace

TrialRows::TrialRows(TrialTable& table, std::unique_ptr<IRowDestination> rows, Meeting meeting,
                     RehearsedParents* parents)
    : table_(table), rows_(std::move(rows)), meeting_(std::move(meeting)), parents_(parents) {}

BlockResult TrialRows::StoreBlock(const ado::RowBlock& converted, std::size_t first,
                                  std::size_t count) {
  try {
    left_out_ = 0;
    MakeRoom(converted, count);
    const BlockResult result = rows_->StoreBlock(converted, first, count);
    if (result != BlockResult::Stored) return result;
    const std::int64_t conflicts = CountConflicts();
    const std::int64_t repetitions = conflicts > 0 ? CountRepetitions(conflicts) : 0;
    const bool are_all_there = repetitions == static_cast<std::int64_t>(count);
    const bool may_mix = repetitions >= conflicts && meeting_.may_mix;
    bool is_taken = conflicts == 0 || are_all_there || may_mix;
    if (is_taken && !are_all_there && parents_ != nullptr) {
      is_taken = parents_->TakeBlock(count, conflicts == 0);
    }
    if (conflicts > 0 || !is_taken) Empty();
    if (!is_taken) return BlockResult::Refused;
    left_out_ = static_cast<std::size_t>(repetitions);
    return result;
  } catch (const RunTimeError&) {
    return BlockResult::Failed;
  }
}

RowOutcome TrialRows::StoreRow(const ado::RowBlock& converted, std::size_t row,
                               std::int64_t position) {
  MakeRoom(converted, 1);
  RowOutcome outcome = rows_->StoreRow(converted, row);
  outcome.reason.description = table_.Words(std::move(outcome.reason.description));
  const bool is_stored =
      outcome.result == RowResult::Stored || outcome.result == RowResult::Changed;
  if (!is_stored) return outcome;
  // A server looks for the keys before it looks for the parents.
  if (const std::int64_t conflicts = CountConflicts(); conflicts > 0) {
    const bool is_there = CountRepetitions(conflicts) > 0;
    Empty();
    if (is_there) return {RowResult::Duplicate};
    return {RowResult::Refused, KeyTaken(table_.Server())};
  }
  if (parents_ == nullptr) return outcome;
  RowOutcome taken = parents_->TakeRow(position);
  if (taken.result == RowResult::Stored) return outcome;
  Empty();
  return taken;
}

std::int64_t TrialRows::CountRepetitions(std::int64_t conflicts) {
  return meeting_.repetitions == meeting_.conflicts ? conflicts : Count(meeting_.repetitions);
}

std::int64_t TrialRows::Count(const std::string& question) {
  ado::Recordset answer = table_.Connection().Execute(question);
  const std::string text = answer.AtEnd() ? "" : answer.Field(0).Text();
  std::int64_t count = 0;
  std::from_chars(text.data(), text.data() + text.size(), count);
  return count;
}

void TrialRows::MakeRoom(const ado::RowBlock& converted, std::size_t count) {
  if (count == 0) return;
  kept_rows_ += count;
  kept_bytes_ += converted.Bytes() / converted.Rows() * count;
  if (kept_rows_ > kMostRows || kept_bytes_ > kMostBytes) Empty();
}

void TrialRows::Empty() {
  table_.Empty();
  kept_rows_ = kept_bytes_ = 0;
}

}  // namespace dorvane
