#include "endpoint/table_comparison.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "endpoint/comparable_value.h"
#include "platform/run_time_error.h"

namespace dorvane {

namespace {

using ado::DataType;
using ado::Value;
using testing::ElementsAre;
using Kind = RowDifference::Kind;
using Rows = std::vector<std::vector<Value>>;

/// Gives the rows in blocks of three.
TableReader Reader(const Rows& rows) {
  return [&rows]() -> BlockSource {
    return [&rows, next = std::size_t{0}](ado::RowBlock& block) mutable {
      if (next == rows.size()) return false;
      block.Clear(rows[0].size());
      for (int i = 0; i < 3 && next < rows.size(); ++i) {
        std::ranges::copy(rows[next++], block.AppendRow().begin());
      }
      return true;
    };
  };
}

ComparisonResult Compare(const Rows& source, const Rows& destination,
                         const std::vector<std::size_t>& key) {
  const ComparedTables tables{.types = {DataType::Integer, DataType::VarWChar, DataType::Double},
                              .key = key,
                              .source = Reader(source),
                              .destination = Reader(destination)};
  return CompareTables(tables, [](std::int64_t) { return true; }).value();
}

Value Text(std::string_view text) {
  return text;
}

const Rows kRows = {{std::int64_t{1}, Text("one"), 1.5},
                    {std::int64_t{2}, Text("two"), Value()},
                    {std::int64_t{3}, Text(""), 0.1},
                    {std::int64_t{4}, Value(), -0.0},
                    {std::int64_t{4}, Value(), -0.0}};

TEST(TableComparison, OrderAndFormDoNotMatter) {
  const Rows other = {
      kRows[4], {Text(" 3.00"), Text(""), Text(" 0.1")}, kRows[1], kRows[3], kRows[0]};
  const ComparisonResult result = Compare(kRows, other, {});
  EXPECT_TRUE(result.IsEqual());
  EXPECT_EQ(result.source_rows, 5);
  EXPECT_EQ(result.destination_rows, 5);
  EXPECT_TRUE(Compare({}, {}, {0}).IsEqual());
}

TEST(TableComparison, RowsWithoutAKeyAreCounted) {
  // The same rows, but another number of each.
  const ComparisonResult result =
      Compare({kRows[0], kRows[0], kRows[1]}, {kRows[0], kRows[1], kRows[1]}, {});
  EXPECT_EQ(result.missing, 1);
  EXPECT_EQ(result.additional, 1);
  ASSERT_EQ(result.examples.size(), 2u);
  for (const RowDifference& example : result.examples) {
    EXPECT_EQ(example.key[0], example.kind == Kind::Missing ? "1" : "2");
  }
}

TEST(TableComparison, ARowOfTheSameKeyIsDifferentInItsColumns) {
  const Rows other = {{std::int64_t{1}, Text("One"), 1.5},
                      {std::int64_t{2}, Text("two"), 0.0},
                      {std::int64_t{9}, Text(""), 0.1}};
  const ComparisonResult result = Compare({kRows[0], kRows[1], kRows[2]}, other, {0});
  EXPECT_EQ(result.different, 2);
  EXPECT_EQ(result.missing, 1);
  EXPECT_EQ(result.additional, 1);
  for (const RowDifference& example : result.examples) {
    if (example.kind != Kind::Different) continue;
    const bool is_first = example.key == std::vector<std::string>{"1"};
    EXPECT_THAT(example.columns, ElementsAre(is_first ? 1 : 2));
  }
}

TEST(TableComparison, AllOfALargeTableMayDiffer) {
  Rows source;
  Rows destination;
  for (std::int64_t i = 0; i < 300'000; ++i) {
    source.push_back({i, Value(), Value()});
    destination.push_back({i + 150'000, Value(), 1.0});
  }
  const ComparisonResult result = Compare(source, destination, {0});
  EXPECT_EQ(result.missing, 150'000);
  EXPECT_EQ(result.additional, 150'000);
  EXPECT_EQ(result.different, 150'000);
  EXPECT_EQ(result.examples.size(), 30u);
}

TEST(TableComparison, ASideThatFailsEndsIt) {
  const TableReader broken = [] {
    return [](ado::RowBlock&) -> bool { throw RunTimeError(1, "x", "lost"); };
  };
  ComparedTables tables{.types = {DataType::Integer, DataType::VarWChar, DataType::Double},
                        .key = {},
                        .source = Reader(kRows),
                        .destination = broken};
  EXPECT_THROW(CompareTables(tables, [](std::int64_t) { return true; }), RunTimeError);
  std::swap(tables.source, tables.destination);
  EXPECT_THROW(CompareTables(tables, [](std::int64_t) { return true; }), RunTimeError);
}

TEST(TableComparison, AStoppedOneHasNoResult) {
  const ComparedTables tables{.types = {DataType::Integer, DataType::VarWChar, DataType::Double},
                              .key = {},
                              .source = Reader(kRows),
                              .destination = Reader(kRows)};
  EXPECT_FALSE(CompareTables(tables, [](std::int64_t rows) { return rows < 3; }).has_value());
}

std::string Form(const Value& value, DataType type) {
  std::string form;
  AppendComparable(form, value, type);
  return form;
}

TEST(ComparableValue, SaysWhatAColumnTakesForTheSame) {
  struct Pair {
    DataType type;
    Value left, right;
    bool is_equal;
  };
  const ado::DateTime noon{2024, 2, 29, 12 * 3600, 500'000'000};
  const std::vector<Pair> pairs = {
      {DataType::Decimal, ado::Decimal{"-0.500"}, Text("-.5"), true},
      {DataType::Decimal, ado::Decimal{"100"}, Text("1"), false},
      {DataType::Decimal, ado::Decimal{"-0.00"}, std::int64_t{0}, true},
      {DataType::Boolean, true, Text("1"), true},
      {DataType::BigInt, std::uint64_t{18446744073709551615U}, Text("18446744073709551615"), true},
      {DataType::Single, 0.1, 0.1F, true},
      {DataType::Double, 0.1, 0.1F, false},
      {DataType::Double, Text(" 1.0E+300"), 1e300, true},
      {DataType::DBTimeStamp, noon, Text("2024-02-29 12:00:00.500"), true},
      {DataType::DBTimeStamp, noon, Text("2024-02-29 12:00:00"), false},
      {DataType::DBDate, noon, Text("2024-02-29"), true},
      {DataType::DBTime, noon, Text("12:00:00.500000"), true},
      {DataType::WChar, Text("a  "), Text("a"), true},
      {DataType::VarWChar, Text("a  "), Text("a"), false},
      {DataType::Binary, ado::Binary{std::string_view("a\0", 2)}, ado::Binary{"a"}, true},
      {DataType::VarBinary, ado::Binary{std::string_view("a\0", 2)}, ado::Binary{"a"}, false},
      {DataType::VarBinary, std::int64_t{1}, std::int64_t{2}, false},
      {DataType::Guid, ado::Guid{"{0000000A-0000-0000-0000-000000000000}"},
       Text("0000000a-0000-0000-0000-000000000000"), true},
      {DataType::VarWChar, Value(), Text(""), false},
  };
  for (const Pair& pair : pairs) {
    EXPECT_EQ(Form(pair.left, pair.type) == Form(pair.right, pair.type), pair.is_equal)
        << "pair " << &pair - pairs.data();
  }
}

}  // namespace
}  // namespace dorvane
