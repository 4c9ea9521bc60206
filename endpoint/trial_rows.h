#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "endpoint/rehearsed_parents.h"
#include "endpoint/row_copier.h"
#include "endpoint/trial_table.h"

namespace dorvane {

/// Rows that are stored in a trial table, which tells what would become of them in the table that
/// it stands for. It keeps a limited number of them, by which it sees the duplicates among them.
class TrialRows {
 public:
  /// How rows meet those that are in the table already.
  struct Meeting {
    std::string conflicts = {};    // counts the trial's rows that share a key with one of the table
    std::string repetitions = {};  // counts those that are in the table just so
    bool may_mix = false;          // which rows of a block are there makes no difference
    bool IsAsked() const { return !conflicts.empty(); }
  };

  /// `rows` are those of the trial table, which outlives this. `parents` are null for a table whose
  /// rows refer to none, and are referred to by none, that a rehearsal must look for.
  TrialRows(TrialTable& table, std::unique_ptr<IRowDestination> rows, Meeting meeting,
            RehearsedParents* parents);

  /// As those of IRowDestination, but for Failed, which no server is asked again after: it is the
  /// trial that has come to its end.
  BlockResult StoreBlock(const ado::RowBlock& converted, std::size_t first, std::size_t count);
  std::size_t LeftOut() const { return left_out_; }
  /// `position`: among the rows of the table, from 1. Throws RunTimeError when the trial has come
  /// to its end.
  RowOutcome StoreRow(const ado::RowBlock& converted, std::size_t row, std::int64_t position);
  std::vector<ValueChanges> Changes() const { return rows_->Changes(); }

 private:
  std::int64_t Count(const std::string& question);
  std::int64_t CountConflicts() { return meeting_.IsAsked() ? Count(meeting_.conflicts) : 0; }
  /// Of so many rows in conflict with the table's.
  std::int64_t CountRepetitions(std::int64_t conflicts);
  /// Forgets the rows when there are too many of them.
  void MakeRoom(const ado::RowBlock& converted, std::size_t count);
  void Empty();

  TrialTable& table_;
  const std::unique_ptr<IRowDestination> rows_;
  const Meeting meeting_;
  RehearsedParents* const parents_;
  std::size_t left_out_ = 0;  // of the block stored last
  std::size_t kept_rows_ = 0;
  std::size_t kept_bytes_ = 0;
};

}  // namespace dorvane
