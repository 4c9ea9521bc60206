#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <future>
#include <span>
#include <string>
#include <vector>

#include "endpoint/events.h"
#include "endpoint/failure.h"
#include "endpoint/run_host.h"
#include "platform/ado/row_block.h"

namespace dorvane {

/// Why rows sent together were not stored: something in them was refused, or the sending failed in
/// another way (a lost connection, a deadlock).
enum class BlockResult { Stored, Refused, Failed };

/// What became of a row that was stored alone.
enum class RowResult {
  Stored,
  Changed,    // stored, with what the destination could not take replaced
  Duplicate,  // left out: its key was there before the run
  Refused,    // left out: the destination takes no such row
  Postponed,  // kept by the destination, which tries it again and tells what comes of it
};

struct RowOutcome {
  RowResult result = RowResult::Stored;
  ErrorSummary reason = {};  // of a refused row: the server's own number and words
};

/// Values of a table that arrive otherwise than they were.
struct ValueChanges {
  std::int64_t count = 0;
  std::string what;        // behind the count: "dates before 1753-01-01 were raised to it"
  bool is_loss = false;    // counts as a failure; the others follow the conversion's rules
  std::string first = {};  // "Born = 1700-01-01", where it was taken down
};

/// What became of the rows of one table.
struct RowAccount {
  std::int64_t read = 0;
  std::int64_t duplicates = 0;
  std::int64_t postponed = 0;
  std::int64_t refused = 0;
  std::int64_t first_refused = 0;  // its position among the rows read, from 1
  ErrorSummary first_reason;

  /// Counts `count` refused rows, the first of which stands at `position`.
  void AddRefused(std::int64_t count, std::int64_t position, const ErrorSummary& reason);
};

/// The table that rows are copied into.
class IRowDestination {
 public:
  virtual ~IRowDestination() = default;
  /// False for a table that would tell rows sent together from rows sent one by one.
  virtual bool TakesBlocks() = 0;
  /// The value to be stored for one of the source's, by the position of its column. It may refer to
  /// `value`; text and bytes that are new are kept in `storage`. Called in another thread while
  /// earlier rows are stored.
  virtual ado::Value ConvertValue(const ado::Value& value, std::size_t column,
                                  ado::Arena& storage) = 0;
  /// Stores all `count` rows from `first` on, or leaves the table as it was. Does not throw for
  /// what the server says.
  virtual BlockResult StoreBlock(const ado::RowBlock& converted, std::size_t first,
                                 std::size_t count) = 0;
  /// How many rows of the block stored last were there before and were left out: all of them, or
  /// such of which no value would have changed.
  virtual std::size_t LeftOut() const { return 0; }
  /// Stores one row under the rules of the direction. Throws RunTimeError when the copy must end.
  virtual RowOutcome StoreRow(const ado::RowBlock& converted, std::size_t row) = 0;
  /// A row that has been stored or postponed, as the source gave it: what is lost of it by the
  /// rules of the conversion is counted here, where rows that were left out do not come.
  virtual void RowStored(std::span<const ado::Value> /*source_row*/) {}
  /// In a rehearsal: of each kind of value that was changed or refused one, for a person to read.
  virtual std::vector<std::string> Examples() const { return {}; }
  /// What happened to values so far; asked for when the copy has ended.
  virtual std::vector<ValueChanges> Changes() const = 0;
};

/// The blocks that rows travel in, by measuring: larger ones are no faster, smaller ones wait
/// longer for commits. Four are in memory at a time.
inline constexpr ado::BlockLimits kTravellingBlock{.rows = 10'000, .bytes = 2 << 20};

/// Fills `converted` with what the destination is to store for the rows of `source`.
void ConvertRows(const ado::RowBlock& source, IRowDestination& destination,
                 ado::RowBlock& converted);

/// How rows travel: one by one, the reference, or in blocks with the same outcome; as Statements
/// blocks do without what a server has beside statements.
enum class CopyStrategy { Blocks, Statements, RowByRow };

struct CopyPlan {
  CopyStrategy strategy = CopyStrategy::Blocks;
  ado::BlockLimits limits = kTravellingBlock;
};

/// Fills the block with the next rows; false at the end. Called in another thread.
using BlockSource = std::function<bool(ado::RowBlock& block)>;

/// Copies rows in their order and raises TableRecordConverted once for each row that was handled.
/// The next block is read and its values are converted while the last one is stored.
///
/// A refused block is tried again in halves until the refused row stands alone and goes through
/// StoreRow. After it the blocks are as long as refusals have lately been apart, growing again
/// while nothing is refused; where refusals come close together rows go one by one.
class RowCopier {
 public:
  RowCopier(IRowDestination& destination, IConversionListener& events, IRunHost& host,
            const CopyPlan& plan);

  /// False when the user ended the run before the last row. Throws what StoreRow and `source`
  /// throw, after every row read before has been handled.
  bool Copy(const BlockSource& source);
  /// Of the rows that have been handled.
  const RowAccount& Account() const { return account_; }

 private:
  struct Rows;
  struct Fetched;

  std::future<Fetched> FetchAhead(const BlockSource& source, Rows& rows);
  bool Store(const Rows& rows);
  std::size_t StoreSome(const Rows& rows, std::size_t position);
  void StoreOne(const Rows& rows, std::size_t position);
  std::size_t NextCount(std::size_t position, std::size_t rows) const;
  void Note(const RowOutcome& outcome);
  void Stored(const Rows& rows, std::size_t position, std::size_t count);
  void Handled(std::size_t count);

  IRowDestination& destination_;
  IConversionListener& events_;
  IRunHost& host_;
  const bool blocks_;
  const ado::BlockLimits limits_;
  RowAccount account_;

  std::size_t batch_size_;       // rows that the next attempt may take
  std::size_t clean_rows_ = 0;   // stored since the last refusal
  std::size_t refused_end_ = 0;  // a refusal lies before this row of the block; 0: none is known
};

}  // namespace dorvane
