#include "endpoint/row_copier.h"

#include <algorithm>
#include <array>
#include <exception>

namespace dorvane {

namespace {

// A refusal among so few rows is found sooner one by one than by halving.
constexpr std::size_t kFewRows = 8;
// So many rows stored one by one make a block worth trying again.
constexpr std::size_t kCleanRowsForBlock = 4;
constexpr std::size_t kGrowth = 4;

}  // namespace

void RowAccount::AddRefused(std::int64_t count, std::int64_t position, const ErrorSummary& reason) {
  if (refused == 0 || position < first_refused) {
    first_refused = position;
    first_reason = reason;
  }
  refused += count;
}

void ConvertRows(const ado::RowBlock& source, IRowDestination& destination,
                 ado::RowBlock& converted) {
  converted.Clear(source.Columns());
  for (std::size_t row = 0; row < source.Rows(); ++row) {
    const std::span<const ado::Value> values = source.Row(row);
    const std::span<ado::Value> storable = converted.AppendRow();
    for (std::size_t i = 0; i < values.size(); ++i) {
      storable[i] = destination.ConvertValue(values[i], i, converted.Storage());
    }
  }
}

struct RowCopier::Rows {
  explicit Rows(const ado::BlockLimits& limits) : source(limits) {}
  ado::RowBlock source;
  ado::RowBlock converted;
};

struct RowCopier::Fetched {
  bool has_more = false;
  std::exception_ptr failure;
};

RowCopier::RowCopier(IRowDestination& destination, IConversionListener& events, IRunHost& host,
                     const CopyPlan& plan)
    : destination_(destination),
      events_(events),
      host_(host),
      blocks_(plan.strategy != CopyStrategy::RowByRow && destination.TakesBlocks()),
      limits_(plan.limits),
      batch_size_(blocks_ ? plan.limits.rows : 1) {}

bool RowCopier::Copy(const BlockSource& source) {
  std::array<Rows, 2> rows{Rows(limits_), Rows(limits_)};
  std::size_t current = 0;
  // Destroyed before the rows: an early end waits for the block that is being read.
  std::future<Fetched> ahead = FetchAhead(source, rows[current]);
  for (;;) {
    const Fetched fetched = ahead.get();
    if (fetched.has_more) ahead = FetchAhead(source, rows[1 - current]);
    // The rows that came before a failure of the source are copied like any others.
    if (!Store(rows[current])) return false;
    if (fetched.failure) std::rethrow_exception(fetched.failure);
    if (!fetched.has_more) return true;
    current = 1 - current;
  }
}

std::future<RowCopier::Fetched> RowCopier::FetchAhead(const BlockSource& source, Rows& rows) {
  return std::async(std::launch::async, [this, &source, &rows] {
    Fetched fetched;
    // A source that fails before it reads must not leave rows of an earlier block behind.
    rows.source.Clear(0);
    try {
      fetched.has_more = source(rows.source);
    } catch (...) {
      fetched.failure = std::current_exception();
    }
    ConvertRows(rows.source, destination_, rows.converted);
    return fetched;
  });
}

bool RowCopier::Store(const Rows& rows) {
  refused_end_ = 0;
  for (std::size_t position = 0; position < rows.converted.Rows();) {
    if (host_.IsStopping()) return false;
    position += StoreSome(rows, position);
  }
  host_.Yield();
  return true;
}

std::size_t RowCopier::StoreSome(const Rows& rows, std::size_t position) {
  const std::size_t count = NextCount(position, rows.converted.Rows());
  if (count == 1) {
    StoreOne(rows, position);
    return 1;
  }
  switch (destination_.StoreBlock(rows.converted, position, count)) {
    case BlockResult::Stored:
      account_.duplicates += static_cast<std::int64_t>(destination_.LeftOut());
      if (destination_.LeftOut() < count) {
        Stored(rows, position, count);
        clean_rows_ += count;
      }
      batch_size_ = std::min(batch_size_ * kGrowth, limits_.rows);
      Handled(count);
      return count;
    case BlockResult::Refused:
      refused_end_ = position + count;
      batch_size_ = std::max<std::size_t>(1, count / 2);
      return 0;
    case BlockResult::Failed:
      // One row tells whether the destination still answers, and reports once if it does not.
      clean_rows_ = 0;
      batch_size_ = 1;
      return 0;
  }
  return 0;
}

void RowCopier::StoreOne(const Rows& rows, std::size_t position) {
  const RowOutcome outcome = destination_.StoreRow(rows.converted, position);
  Note(outcome);
  if (outcome.result != RowResult::Duplicate && outcome.result != RowResult::Refused) {
    Stored(rows, position, 1);
  }
  if (outcome.result != RowResult::Stored) {
    const std::size_t usual_stretch = clean_rows_ / kGrowth;
    batch_size_ = usual_stretch < kCleanRowsForBlock ? 1 : std::min(usual_stretch, limits_.rows);
    clean_rows_ = 0;
    refused_end_ = 0;
  } else {
    ++clean_rows_;
    if (batch_size_ == 1 && clean_rows_ >= kCleanRowsForBlock) batch_size_ = kCleanRowsForBlock;
  }
  Handled(1);
}

void RowCopier::Note(const RowOutcome& outcome) {
  if (outcome.result == RowResult::Duplicate) ++account_.duplicates;
  if (outcome.result == RowResult::Postponed) ++account_.postponed;
  if (outcome.result == RowResult::Refused) {
    account_.AddRefused(1, account_.read + 1, outcome.reason);
  }
}

std::size_t RowCopier::NextCount(std::size_t position, std::size_t rows) const {
  if (!blocks_) return 1;
  const std::size_t count = std::min(batch_size_, rows - position);
  if (position >= refused_end_) return count;
  const std::size_t suspects = refused_end_ - position;
  return suspects <= kFewRows ? 1 : std::min(count, suspects / 2);
}

void RowCopier::Stored(const Rows& rows, std::size_t position, std::size_t count) {
  for (std::size_t row = 0; row < count; ++row) {
    destination_.RowStored(rows.source.Row(position + row));
  }
}

void RowCopier::Handled(std::size_t count) {
  account_.read += static_cast<std::int64_t>(count);
  for (std::size_t row = 0; row < count; ++row) events_.TableRecordConverted();
}

}  // namespace dorvane
