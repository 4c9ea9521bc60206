#include "endpoint/table_queue.h"

#include <gtest/gtest.h>

namespace dorvane {

namespace {

TEST(TableQueue, KeepsTheOrderOfTablesThatKeysJoin) {
  const NameList tables{"sale line", "Sale", "note", "shop"};
  const std::vector<Reference> references{{"a", "sale_line", "sale"},  // listed ahead of its parent
                                          {"b", "sale", "SHOP"},
                                          {"c", "note", "elsewhere"},
                                          {"d", "note", "note"}};
  TableQueue queue(tables, {"sale_line", "Sale", "note", "shop"}, references);
  EXPECT_EQ(queue.Begin(), "sale line");
  EXPECT_EQ(queue.Begin(), "note");
  EXPECT_EQ(queue.Begin(), std::nullopt);
  queue.End("note");
  EXPECT_EQ(queue.Begin(), std::nullopt);
  queue.End("sale line");
  EXPECT_EQ(queue.Begin(), "Sale");
  EXPECT_FALSE(queue.IsEmpty());
  queue.End("Sale");
  EXPECT_EQ(queue.Begin(), "shop");
  EXPECT_TRUE(queue.IsEmpty());
}

}  // namespace
}  // namespace dorvane
