// Choosing among many tables: filter, patterns, sizes, order.
#include <gtest/gtest.h>

#include <QComboBox>
#include <semaphore>

#include "tests/ui/print_qt.h"
#include "tests/ui/wizard/wizard_driver.h"

namespace dorvane::test {

namespace {

class TablesPages : public testing::Test {
 protected:
  void SortBy(const char* key) {
    auto& box = driver_.Get<QComboBox>("cboSortTables");
    QTest::keyClick(&box, Qt::Key_Home);
    while (box.currentText() != key) QTest::keyClick(&box, Qt::Key_Down);
  }

  Script script_;
  WizardDriver driver_{script_};
};

TEST_F(TablesPages, SizesComeWhileOneChoosesAndSortTheTables) {
  std::binary_semaphore asked{0};
  script_.tables = [] { return NameList{"a", "b", "c", "d"}; };
  script_.sizes = [&] {
    EXPECT_TRUE(asked.try_acquire_for(std::chrono::seconds(20)));
    return std::vector<TableSize>{{"a", 10, 900'000}, {"b", 2'000'000, 70'000}, {"c", 30, 8'192}};
  };
  driver_.GoTo(page::kTables);
  driver_.Click("cmdSLR");
  EXPECT_EQ(driver_.Names("lstDestTables"), NameList{"a"}) << "before the server has answered";
  asked.release();
  const QAbstractItemModel& available = *driver_.Get<NameListView>("lstSrcTables").model();
  const auto spoken = [&] { return available.index(0, 0).data(Qt::AccessibleTextRole).toString(); };
  EXPECT_TRUE(QTest::qWaitFor([&] { return spoken() == "b, 2,000,000 rows, 68.4 kB"; }))
      << spoken().toStdString();
  SortBy("Rows");
  EXPECT_EQ(driver_.Names("lstSrcTables"), (NameList{"b", "c", "d"}));
  driver_.Click("cmdSRL");
  SortBy("Size");
  EXPECT_EQ(driver_.Names("lstSrcTables"), (NameList{"a", "b", "c", "d"}));
  SortBy("Rows");
  EXPECT_EQ(driver_.Names("lstSrcTables"), (NameList{"b", "c", "a", "d"}));
  SortBy("Name");
  EXPECT_EQ(driver_.Names("lstSrcTables"), (NameList{"a", "b", "c", "d"}));
}

TEST_F(TablesPages, WhoLeavesWhileTheServerCountsSeesNoWindowAnyMore) {
  std::binary_semaphore ended{0};
  script_.sizes = [&] {
    ended.acquire();
    return std::vector<TableSize>();
  };
  driver_.GoTo(page::kTables);
  driver_.Window().close();
  EXPECT_FALSE(driver_.Window().isVisible());
  EXPECT_FALSE(driver_.closed) << "the connection is open";
  ended.release();
  EXPECT_TRUE(QTest::qWaitFor([&] { return driver_.closed; }));
}

}  // namespace
}  // namespace dorvane::test
