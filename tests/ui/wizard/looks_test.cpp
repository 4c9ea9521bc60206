// How every page looks and is told: nothing is cut, everything can be read, every control has a
// name.
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QComboBox>
#include <map>

#include "tests/ui/print_qt.h"
#include "tests/ui/readable_words.h"
#include "tests/ui/wizard/wizard_driver.h"

namespace dorvane::test {

namespace {

class Looks : public testing::Test {
 protected:
  ~Looks() override {
    QApplication::setFont(font_);
    QApplication::processEvents();
  }

  /// Shows each page in turn, both directions, connected where a page connects.
  static void OnEveryPage(WizardDriver& driver, const std::function<void(const char*)>& look) {
    look("direction");
    for (const auto& [option, source, destination] :
         {std::tuple("optMsSqlToMySql", "cmdSrcConnect", "cmdDestConnect"),
          std::tuple("optMySqlToMsSql", "cmdDir2MysqlConnect", "cmdDir2MsSqlConnect")}) {
      driver.Click(option);
      driver.Next();
      look("source");
      driver.Click(source);
      look("source, connected");
      driver.Next();
      look("destination");
      driver.Click(destination);
      driver.Next();
      driver.Click("cmdSLR");
      look("tables");
      driver.Next();
      look("transfer");
      for (int page = 0; page < 4; ++page) driver.Back();
    }
  }

  QFont font_ = QApplication::font();
  Script script_;
};

TEST_F(Looks, NothingIsCutAtAnyUsualFontSize) {
  for (const int points : {9, 11, 13, 16}) {
    QFont font = font_;
    font.setPointSize(points);
    QApplication::setFont(font);
    WizardDriver driver(script_);
    OnEveryPage(driver, [&](const char* page) {
      for (QWidget* control : Worded(driver.Window())) {
        if (qobject_cast<QLineEdit*>(control)) continue;                  // scrolls
        if (qobject_cast<QLineEdit*>(control->parentWidget())) continue;  // its pictures
        const QSize needed = control->minimumSizeHint();
        EXPECT_TRUE(control->width() >= needed.width() && control->height() >= needed.height())
            << control->objectName().toStdString() << " on " << page << " at " << points
            << " points";
        const QRect place(control->mapTo(&driver.Window(), QPoint()), control->size());
        EXPECT_TRUE(driver.Window().rect().contains(place)) << control->objectName().toStdString();
      }
    });
  }
}

TEST_F(Looks, EverythingCanBeReadInEverySkinAndPalette) {
  InEverySkinAndPalette([this](const std::string& where) {
    WizardDriver driver(script_);
    OnEveryPage(driver, [&](const char* page) {
      ExpectReadable(driver.Window(), page + (" in " + where));
    });
    driver.Next();
    auto& list = driver.Get<QComboBox>("cmbDir2MysqlDatabases");
    list.showPopup();
    EXPECT_GE(Contrast(list.view()->grab().toImage()), kReadable) << "the open list";
    list.hidePopup();
  });
}

TEST_F(Looks, LongNamesNeverWidenTheWindow) {
  const std::string name(128, 'w');
  script_.databases = [&] { return NameList{name}; };
  script_.tables = [&] { return NameList{name, name}; };
  WizardDriver driver(script_);
  const int width = driver.Window().width();
  OnEveryPage(driver, [&](const char* page) { EXPECT_EQ(driver.Window().width(), width) << page; });
}

/// Every part of the accessible tree that is shown.
void Walk(QAccessibleInterface* part, const std::function<void(QAccessibleInterface&)>& visit) {
  if (!part || part->state().invisible) return;
  visit(*part);
  for (int child = 0; child < part->childCount(); ++child) Walk(part->child(child), visit);
}

TEST_F(Looks, EveryControlHasANameInTheAccessibleTree) {
  WizardDriver driver(script_);
  OnEveryPage(driver, [&](const char* page) {
    std::map<QString, int> names;
    int current_steps = 0;
    Walk(QAccessible::queryAccessibleInterface(&driver.Window()), [&](QAccessibleInterface& part) {
      const QString name = part.text(QAccessible::Name);
      const auto* widget = qobject_cast<QWidget*>(part.object());
      const QString id = widget ? widget->objectName() : QString();
      if (part.text(QAccessible::Description) == "Current step") ++current_steps;
      if (!widget || part.state().disabled) return;
      const bool has_action = part.role() == QAccessible::Button;
      if (part.state().focusable || has_action || part.role() == QAccessible::ProgressBar) {
        EXPECT_FALSE(name.isEmpty()) << id.toStdString() << " on " << page;
      }
      if (has_action) {
        EXPECT_EQ(++names[name], 1) << name.toStdString() << " on " << page;
      }
    });
    EXPECT_EQ(current_steps, 1) << page;
  });
  const auto* option = QAccessible::queryAccessibleInterface(&driver.Get("optMsSqlToMySql"));
  EXPECT_EQ(option->text(QAccessible::Description),
            "I have a MS SQL database and I want to convert it to MySQL");
  QAccessible::queryAccessibleInterface(&driver.Get("Image2"))
      ->actionInterface()
      ->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(driver.help_contexts.size(), 1u);
}

TEST_F(Looks, HelpPictureAndLogoReact) {
  WizardDriver driver(script_);
  auto& help = driver.Get<PictureBox>("imgHelp");
  const QImage normal = help.Picture().toImage();
  QTest::mouseMove(&help, {10, 10});
  EXPECT_NE(help.Picture().toImage(), normal);
  QTest::mouseMove(&driver.Get("picNav"), {60, 5});
  EXPECT_EQ(help.Picture().toImage(), normal);
  driver.Click("Image2");
  EXPECT_EQ(driver.help_contexts, std::vector<std::int32_t>{0}) << "the help's first page";
}

}  // namespace
}  // namespace dorvane::test
