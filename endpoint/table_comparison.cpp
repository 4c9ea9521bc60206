#include "endpoint/table_comparison.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <future>
#include <iterator>
#include <optional>

#include "endpoint/comparable_value.h"
#include "endpoint/row_hash.h"
#include "platform/ado/value_text.h"

namespace dorvane {

namespace {

constexpr std::size_t kBuckets = 1 << 16;
constexpr std::int64_t kMostRowsInHand = 1 << 18;  // of each side
constexpr std::size_t kMostExamples = 10;
constexpr std::chrono::milliseconds kStopInterval{50};
constexpr std::size_t kSides = 2;  // 0: the source, 1: the destination

std::size_t BucketOf(const RowHash& row) {
  return row.key.high % kBuckets;
}

/// The rows of one side by the hash of their keys.
struct Bucket {
  std::int64_t rows = 0;
  Hash sum;
  bool operator==(const Bucket&) const = default;
};
using Buckets = std::vector<Bucket>;

/// A difference whose rows are still to be read.
struct Example {
  std::size_t position;  // among the result's
  std::array<std::optional<RowHash>, kSides> rows;
  std::array<std::vector<std::string>, kSides> forms = {};  // of the values, when they are known
};

class Comparison {
 public:
  Comparison(const ComparedTables& tables, const std::function<bool(std::int64_t)>& keep_on)
      : tables_(tables), keep_on_(keep_on) {}

  std::optional<ComparisonResult> Run() {
    if (!Sum()) return std::nullopt;
    for (std::size_t first = 0; first < kBuckets;) {
      const std::size_t end = EndOfPortion(first);
      if (!Compare(first, end)) return std::nullopt;
      first = end;
    }
    if (!examples_.empty() && !Describe()) return std::nullopt;
    return result_;
  }

 private:
  /// Calls `take` with the side, the hashes and the values of each row, both sides at once: the
  /// source in a thread of its own. False when the run is stopping.
  template <typename Take>
  bool ForEachRow(Take take) {
    std::atomic<bool> is_over = false;
    const auto read = [&](const TableReader& reader, std::size_t side, auto keep_on) {
      const BlockSource source = reader();
      RowHasher hasher(tables_.types, tables_.key);
      ado::RowBlock block(kTravellingBlock);
      for (bool has_more = true; has_more && keep_on();) {
        block.Clear(0);
        has_more = source(block);
        for (std::size_t i = 0; i < block.Rows(); ++i) {
          take(side, hasher.Of(block.Row(i)), block.Row(i));
        }
        if (side == 1) rows_read_ += static_cast<std::int64_t>(block.Rows());
      }
    };
    const auto may_go_on = [&] {
      if (!keep_on_(rows_read_)) is_over = true;
      return !is_over;
    };
    // When one side ends early the other one need not be read to its end.
    const auto read_source = [&] {
      try {
        read(tables_.source, 0, [&] { return !is_over; });
      } catch (...) {
        is_over = true;
        throw;
      }
    };
    std::future<void> source = std::async(std::launch::async, read_source);
    try {
      read(tables_.destination, 1, may_go_on);
    } catch (...) {
      is_over = true;
      throw;
    }
    while (source.wait_for(kStopInterval) == std::future_status::timeout) may_go_on();
    source.get();
    return !is_over;
  }

  /// Reads both sides into their buckets.
  bool Sum() {
    std::array<std::int64_t, kSides> rows{};
    const bool is_whole = ForEachRow(
        [&](std::size_t side, const RowHash& hash, std::span<const ado::Value> /*values*/) {
          Bucket& bucket = buckets_[side][BucketOf(hash)];
          ++rows[side];
          ++bucket.rows;
          bucket.sum.high += hash.row.high;
          bucket.sum.low += hash.row.low;
        });
    result_.source_rows = rows[0];
    result_.destination_rows = rows[1];
    return is_whole;
  }

  bool IsEqual(std::size_t bucket) const { return buckets_[0][bucket] == buckets_[1][bucket]; }

  /// The end of the buckets from `first` on whose unequal ones have rows for one reading. Equal
  /// buckets at the end are passed over.
  std::size_t EndOfPortion(std::size_t first) const {
    std::int64_t rows = 0;
    std::size_t end = first;
    for (; end < kBuckets; ++end) {
      if (IsEqual(end)) continue;
      rows += std::max(buckets_[0][end].rows, buckets_[1][end].rows);
      if (rows > kMostRowsInHand && end > first) break;
    }
    return end;
  }

  /// Reads the rows of the unequal buckets in the range and finds what is not alike.
  bool Compare(std::size_t first, std::size_t end) {
    bool has_unequal = false;
    for (std::size_t bucket = first; bucket < end; ++bucket) has_unequal |= !IsEqual(bucket);
    if (!has_unequal) return true;
    std::array<std::vector<RowHash>, kSides> rows;
    const bool is_whole = ForEachRow(
        [&](std::size_t side, const RowHash& hash, std::span<const ado::Value> /*values*/) {
          const std::size_t bucket = BucketOf(hash);
          if (bucket >= first && bucket < end && !IsEqual(bucket)) rows[side].push_back(hash);
        });
    if (!is_whole) return false;
    for (std::vector<RowHash>& side : rows) std::ranges::sort(side);
    std::vector<RowHash> missing;
    std::vector<RowHash> additional;
    std::ranges::set_difference(rows[0], rows[1], std::back_inserter(missing));
    std::ranges::set_difference(rows[1], rows[0], std::back_inserter(additional));
    Pair(missing, additional);
    return true;
  }

  /// Rows of one key on both sides are one row with other values. Both in the order of keys.
  void Pair(const std::vector<RowHash>& missing, const std::vector<RowHash>& additional) {
    auto other = additional.begin();
    for (const RowHash& row : missing) {
      for (; other != additional.end() && other->key < row.key; ++other) AddAdditional(*other);
      if (other != additional.end() && other->key == row.key) {
        Add(RowDifference::Kind::Different, result_.different, {row, *other++});
      } else {
        Add(RowDifference::Kind::Missing, result_.missing, {row, std::nullopt});
      }
    }
    std::for_each(other, additional.end(), [this](const RowHash& row) { AddAdditional(row); });
  }

  void AddAdditional(const RowHash& row) {
    Add(RowDifference::Kind::Additional, result_.additional, {std::nullopt, row});
  }

  void Add(RowDifference::Kind kind, std::int64_t& count,
           std::array<std::optional<RowHash>, kSides> rows) {
    if (count++ >= static_cast<std::int64_t>(kMostExamples)) return;
    examples_.push_back({.position = result_.examples.size(), .rows = rows});
    result_.examples.push_back({.kind = kind});
  }

  /// Reads the rows of the examples once more for their values.
  bool Describe() {
    const bool is_whole =
        ForEachRow([&](std::size_t side, const RowHash& hash, std::span<const ado::Value> values) {
          for (Example& example : examples_) {
            if (example.rows[side] == hash) Describe(example, side, values);
          }
        });
    for (const Example& example : examples_) {
      const auto& [source, destination] = example.forms;
      for (std::size_t i = 0; i < source.size() && i < destination.size(); ++i) {
        if (source[i] != destination[i]) result_.examples[example.position].columns.push_back(i);
      }
    }
    return is_whole;
  }

  void Describe(Example& example, std::size_t side, std::span<const ado::Value> values) {
    std::vector<std::string>& forms = example.forms[side];
    if (!forms.empty()) return;  // several rows are alike
    for (std::size_t i = 0; i < values.size(); ++i) {
      AppendComparable(forms.emplace_back(), values[i], tables_.types[i]);
    }
    // Each side fills in its own examples; a different row has the source's key.
    if (side == 1 && example.rows[0]) return;
    std::vector<std::string>& key = result_.examples[example.position].key;
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (tables_.key.empty() || std::ranges::find(tables_.key, i) != tables_.key.end()) {
        key.push_back(ado::ToText(values[i], tables_.types[i]));
      }
    }
  }

  const ComparedTables& tables_;
  const std::function<bool(std::int64_t)>& keep_on_;
  ComparisonResult result_;
  std::int64_t rows_read_ = 0;  // of the destination, in all readings
  std::array<Buckets, kSides> buckets_ = {Buckets(kBuckets), Buckets(kBuckets)};
  std::vector<Example> examples_;
};

}  // namespace

std::optional<ComparisonResult> CompareTables(
    const ComparedTables& tables, const std::function<bool(std::int64_t rows)>& keep_on) {
  return Comparison(tables, keep_on).Run();
}

}  // namespace dorvane
