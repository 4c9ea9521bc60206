#include <gtest/gtest.h>

#include "ui/controls/name_list_view.h"
#include "ui/controls/wrapped_label.h"

namespace dorvane {

namespace {

TEST(NameListView, KeepsOrderAndRemovesOnlyTheFirstExactName) {
  NameListView list;
  list.SetNames({"a", "B", "b", "B"}, 1);
  EXPECT_EQ(list.Current(), 1);
  list.RemoveFirst("x");
  list.RemoveFirst("B");
  list.Append("c");
  EXPECT_EQ(list.Names(), (std::vector<std::string>{"a", "b", "B", "c"}));
}

TEST(NameListView, AnEntryWithTheFocusAloneIsNotSelected) {
  NameListView list;
  list.SetNames({"a", "b"}, -1);
  list.selectionModel()->setCurrentIndex(list.model()->index(0, 0), QItemSelectionModel::NoUpdate);
  EXPECT_EQ(list.Current(), -1);
}

TEST(NameListView, ShowsTheCurrentOfManyNames) {
  NameListView list;
  list.resize(200, 300);
  list.show();
  std::vector<std::string> names;
  for (int i = 0; i < 10'000; ++i) names.push_back("table " + std::to_string(i));
  list.SetNames(names, 9'999);
  EXPECT_TRUE(list.viewport()->rect().intersects(list.visualRect(list.currentIndex())));
}

TEST(WrappedLabel, BreaksInsideWordsThatAreTooWide) {
  WrappedLabel label;
  const int line = label.fontMetrics().height();
  label.setText(QString(300, 'W'));
  EXPECT_GT(label.heightForWidth(200), 5 * line);
  label.setText("one\r\n\r\nthree");
  EXPECT_NEAR(label.heightForWidth(400), 3 * line, 3);

  // What is drawn ends inside the label, too.
  label.setText(QString(60, 'W'));
  label.resize(200, label.heightForWidth(200));
  const QImage image = label.grab().toImage();
  bool inked_last_line = false;
  for (int x = 0; x < image.width(); ++x) {
    inked_last_line |= qGray(image.pixel(x, image.height() - line / 2)) < 100;
  }
  EXPECT_TRUE(inked_last_line);
}

}  // namespace
}  // namespace dorvane
