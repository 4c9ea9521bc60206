#include "endpoint/row_copier.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <set>

#include "platform/run_time_error.h"
#include "tests/endpoint/recorders.h"

namespace dorvane {

namespace {

/// A table of row numbers that refuses some of them.
class NumberTable : public IRowDestination {
 public:
  std::set<std::int64_t> refused;
  std::int64_t ends_at = -1;  // StoreRow of this row ends the copy
  bool takes_blocks = true;
  std::set<std::int64_t> failing;  // blocks that hold one of these fail in another way

  std::vector<std::int64_t> stored;
  std::size_t attempts = 0;  // of either kind
  std::size_t rows_sent = 0;
  std::size_t row_attempts = 0;

  bool TakesBlocks() override { return takes_blocks; }
  ado::Value ConvertValue(const ado::Value& value, std::size_t, ado::Arena&) override {
    return value;
  }
  BlockResult StoreBlock(const ado::RowBlock& block, std::size_t first,
                         std::size_t count) override {
    ++attempts;
    rows_sent += count;
    for (std::size_t row = first; row < first + count; ++row) {
      if (failing.contains(Number(block, row))) return BlockResult::Failed;
    }
    for (std::size_t row = first; row < first + count; ++row) {
      const std::int64_t number = Number(block, row);
      if (refused.contains(number) || number == ends_at) return BlockResult::Refused;
    }
    for (std::size_t row = first; row < first + count; ++row) {
      stored.push_back(Number(block, row));
    }
    return BlockResult::Stored;
  }
  RowOutcome StoreRow(const ado::RowBlock& block, std::size_t row) override {
    ++attempts;
    ++rows_sent;
    ++row_attempts;
    const std::int64_t number = Number(block, row);
    if (number == ends_at) throw RunTimeError(1, "test", "ended");
    if (refused.contains(number)) return {RowResult::Refused};
    stored.push_back(number);
    return {};
  }
  std::vector<ValueChanges> Changes() const override { return {}; }

 private:
  static std::int64_t Number(const ado::RowBlock& block, std::size_t row) {
    return std::get<std::int64_t>(block.Row(row)[0]);
  }
};

/// Rows numbered from 0, then the end or a failure.
BlockSource Numbers(std::int64_t count, bool fails_at_end = false) {
  return [next = std::int64_t{0}, count, fails_at_end](ado::RowBlock& block) mutable {
    block.Clear(1);
    while (next < count && !block.IsFull()) block.AppendRow()[0] = next++;
    if (next == count && fails_at_end) throw RunTimeError(2, "test", "source broke");
    return block.Rows() > 0;
  };
}

struct Copy {
  NumberTable table;
  test::EventRecorder events;
  test::HostRecorder host;
  bool finished = false;
  std::int32_t failure = 0;

  void Run(const BlockSource& source, CopyStrategy strategy, std::size_t block_rows) {
    RowCopier copier(table, events, host, {strategy, {block_rows, 1 << 20}});
    try {
      finished = copier.Copy(source);
    } catch (const RunTimeError& error) {
      failure = error.Number();
    }
  }
};

std::vector<std::int64_t> AllBut(std::int64_t count, const std::set<std::int64_t>& left_out) {
  std::vector<std::int64_t> numbers;
  for (std::int64_t i = 0; i < count; ++i) {
    if (!left_out.contains(i)) numbers.push_back(i);
  }
  return numbers;
}

TEST(RowCopier, OneRefusalAtAnyPlaceLeavesOutThatRowAlone) {
  for (std::int64_t bad = 0; bad < 150; ++bad) {
    Copy copy;
    copy.table.refused = {bad};
    copy.Run(Numbers(150), CopyStrategy::Blocks, 64);
    ASSERT_TRUE(copy.finished);
    ASSERT_EQ(copy.table.stored, AllBut(150, {bad})) << bad;
    ASSERT_EQ(copy.events.rows, 150) << bad;
  }
}

TEST(RowCopier, AnyPatternGivesTheRowsOfTheReference) {
  std::mt19937 random(42);
  for (int round = 0; round < 300; ++round) {
    std::bernoulli_distribution is_refused(round % 10 / 10.0);
    std::set<std::int64_t> refused;
    for (std::int64_t i = 0; i < 500; ++i) {
      if (is_refused(random)) refused.insert(i);
    }
    const std::int64_t ends_at = round % 3 == 0 ? round : -1;
    Copy blocks;
    Copy reference;
    for (Copy* copy : {&blocks, &reference}) {
      copy->table.refused = refused;
      copy->table.ends_at = ends_at;
    }
    blocks.table.failing = {round % 7 == 0 ? round : -1};
    blocks.Run(Numbers(500, round % 4 == 0), CopyStrategy::Blocks, 1 + round % 100);
    reference.Run(Numbers(500, round % 4 == 0), CopyStrategy::RowByRow, 1 + round % 100);
    ASSERT_EQ(blocks.table.stored, reference.table.stored) << round;
    ASSERT_EQ(blocks.events.events, reference.events.events) << round;
    ASSERT_EQ(blocks.failure, reference.failure) << round;
    ASSERT_EQ(blocks.finished, reference.finished) << round;
  }
}

TEST(RowCopier, ALoneRefusalCostsAFewAttemptsAndBlocksComeBack) {
  Copy copy;
  copy.table.refused = {4321};
  copy.Run(Numbers(10000), CopyStrategy::Blocks, 1000);
  EXPECT_LT(copy.table.attempts, 40u);
  EXPECT_LT(copy.table.rows_sent, 12500u);
}

TEST(RowCopier, ATableFullOfRefusalsIsNotSentTwice) {
  Copy copy;
  for (std::int64_t i = 0; i < 10000; ++i) copy.table.refused.insert(i);
  copy.Run(Numbers(10000), CopyStrategy::Blocks, 1000);
  EXPECT_EQ(copy.events.rows, 10000);
  EXPECT_LT(copy.table.rows_sent, 12500u);

  Copy half;
  for (std::int64_t i = 0; i < 10000; i += 2) half.table.refused.insert(i);
  half.Run(Numbers(10000), CopyStrategy::Blocks, 1000);
  EXPECT_LT(half.table.rows_sent, 12500u);
}

TEST(RowCopier, CleanRowsBehindRefusalsTravelInBlocksAgain) {
  Copy copy;
  for (std::int64_t i = 0; i < 3000; ++i) copy.table.refused.insert(i);
  copy.Run(Numbers(20000), CopyStrategy::Blocks, 1000);
  EXPECT_LT(copy.table.row_attempts, 3050u);
}

TEST(RowCopier, AFailureThatIsNoRefusalIsTriedOnceMoreAsOneRow) {
  Copy copy;
  copy.table.failing = {10};
  copy.table.ends_at = 0;
  copy.Run(Numbers(1000), CopyStrategy::Blocks, 1000);
  EXPECT_EQ(copy.table.attempts, 2u);
  EXPECT_EQ(copy.failure, 1);
  EXPECT_EQ(copy.events.rows, 0);
}

TEST(RowCopier, RowsReadBeforeTheSourceBrokeAreCopied) {
  Copy copy;
  copy.Run(Numbers(150, true), CopyStrategy::Blocks, 64);
  EXPECT_EQ(copy.failure, 2);
  EXPECT_EQ(copy.table.stored, AllBut(150, {}));
}

TEST(RowCopier, ATableThatTellsBlocksApartGetsRows) {
  Copy copy;
  copy.table.takes_blocks = false;
  copy.Run(Numbers(100), CopyStrategy::Blocks, 64);
  EXPECT_EQ(copy.table.row_attempts, 100u);
}

TEST(RowCopier, StopsBetweenBlocks) {
  Copy copy;
  copy.host.polls_until_stop = 2;
  copy.Run(Numbers(1000), CopyStrategy::Blocks, 100);
  EXPECT_FALSE(copy.finished);
  EXPECT_EQ(copy.failure, 0);
  EXPECT_EQ(copy.table.stored, AllBut(200, {}));
  EXPECT_EQ(copy.events.rows, 200);
  EXPECT_EQ(copy.host.yields, 2);
}

TEST(RowCopier, NoRowsRaiseNothing) {
  Copy copy;
  copy.Run(Numbers(0), CopyStrategy::Blocks, 100);
  EXPECT_TRUE(copy.finished);
  EXPECT_TRUE(copy.events.events.empty());
  EXPECT_EQ(copy.table.attempts, 0u);
}

}  // namespace
}  // namespace dorvane
