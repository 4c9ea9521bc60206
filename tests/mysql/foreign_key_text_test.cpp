#include "mysql/to_mssql/foreign_key_text.h"

#include <gtest/gtest.h>

#include "mysql/to_mssql/reserved_words.h"
#include "mysql/util.h"

namespace dorvane::to_mssql {

namespace {

TEST(ReplaceDashes, AlternatesBrackets) {
  const Util util;
  for (const auto& [text, replaced] :
       {std::pair{"`a`.`b`", "[a].[b]"}, {"plain", "plain"}, {"`a` `", "[a] ["}, {"", ""}}) {
    std::string changed = text;
    EXPECT_EQ(util.ReplaceDashes(changed), replaced);
    EXPECT_EQ(changed, replaced);
  }
}

TEST(ReadForeignKeys, CutsWhatTheServerWrites) {
  const auto keys = ReadForeignKeys(
      "CREATE TABLE `orders` (\n"
      "  `id` int(11) NOT NULL AUTO_INCREMENT,\n"
      "  `note` varchar(20) DEFAULT 'a, CONSTRAINT `x` FOREIGN KEY (`b`) REFERENCES `c` (`d`)',\n"
      "  `price` decimal(10,2) DEFAULT NULL COMMENT 'it''s \\' (,',\n"
      "  PRIMARY KEY (`id`),\n"
      "  KEY `k` (`a`,`b`),\n"
      "  CONSTRAINT `fk_cust` FOREIGN KEY (`cust_id`) REFERENCES `customers` (`id`) ON DELETE SET "
      "NULL ON UPDATE CASCADE,\n"
      "  CONSTRAINT `bare` FOREIGN KEY (`a`) REFERENCES `t` (`x`),\n"
      "  CONSTRAINT `chk` CHECK (`price` > 0 and `note` <> ')'),\n"
      "  CONSTRAINT `two, on DELETE` FOREIGN KEY (`a b`, `c``d`) REFERENCES `other`.`t,u` (`x`, "
      "`FOREIGN`) ON UPDATE NO ACTION\n"
      ") ENGINE=InnoDB COMMENT='CONSTRAINT `z` FOREIGN KEY (`q`) REFERENCES `r` (`s`)'");
  ASSERT_EQ(keys.size(), 3u);
  EXPECT_EQ(keys[0].name, "`fk_cust`");
  EXPECT_EQ(keys[0].columns, "`cust_id`");
  EXPECT_EQ(keys[0].referenced, "`customers` (`id`)");
  EXPECT_EQ(keys[0].delete_rule, "SET NULL");
  EXPECT_EQ(keys[0].update_rule, "CASCADE");
  EXPECT_EQ(keys[1].delete_rule, "RESTRICT");
  EXPECT_EQ(keys[1].update_rule, "RESTRICT");
  EXPECT_EQ(keys[2].name, "`two, on DELETE`");
  EXPECT_EQ(keys[2].columns, "`a b`, `c``d`");
  EXPECT_EQ(keys[2].referenced, "`other`.`t,u` (`x`, `FOREIGN`)");
  EXPECT_EQ(keys[2].delete_rule, "RESTRICT");
  EXPECT_EQ(keys[2].update_rule, "NO ACTION");
}

TEST(ReadForeignKeys, BearsTextThatIsNoDefinition) {
  for (const char* text : {"", "(", ")", "CREATE TABLE `t", "((((", "CREATE VIEW v AS select 1",
                           "x (CONSTRAINT", "x (CONSTRAINT `a` FOREIGN KEY (`b`",
                           "x (CONSTRAINT `a` FOREIGN KEY (`b`) REFERENCES", "'", "x ('\\"}) {
    EXPECT_TRUE(ReadForeignKeys(text).empty()) << text;
  }
}

TEST(ChangeNames, SeesNamesOnly) {
  const auto marked = [](std::string name) { return "<" + name + ">"; };
  EXPECT_EQ(ChangeNames("`a``b` (`c`, `d e`)", marked), "`<a`b>` (`<c>`, `<d e>`)");
  EXPECT_EQ(ChangeNames("no names", marked), "no names");
}

TEST(NeedsBrackets, KnowsReservedWordsAndOddCharacters) {
  for (const char* name : {"order", "KEY", "a b", "a-b", "1a", "", "caf\u00E9", "a.b", "$a"}) {
    EXPECT_TRUE(NeedsBrackets(name)) << name;
  }
  for (const char* name : {"orders", "_a1", "a$b", "keys", "line"}) {
    EXPECT_FALSE(NeedsBrackets(name)) << name;
  }
}

}  // namespace
}  // namespace dorvane::to_mssql
