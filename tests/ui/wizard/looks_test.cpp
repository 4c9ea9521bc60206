// How every page looks and is told: nothing is cut, everything can be read, every control has a
// name.
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QComboBox>
#include <cmath>
#include <map>

#include "tests/ui/print_qt.h"
#include "tests/ui/wizard/wizard_driver.h"

namespace dorvane::test {

namespace {

double Luminance(QRgb color) {
  const auto linear = [](int value) {
    const double part = value / 255.0;
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) +
         0.0722 * linear(qBlue(color));
}

/// Of the picture's ground, which most of it is, to the colour farthest from it.
double Contrast(const QImage& picture) {
  std::vector<double> lights;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) lights.push_back(Luminance(picture.pixel(x, y)));
  }
  std::ranges::sort(lights);
  const double ground = lights[lights.size() / 2] + 0.05;
  return std::max((lights.back() + 0.05) / ground, ground / (lights.front() + 0.05));
}

QPalette DarkPalette() {
  QPalette dark(QColor(45, 45, 48), QColor(30, 30, 32));
  dark.setColor(QPalette::Base, QColor(30, 30, 32));
  return dark;
}

class Looks : public testing::Test {
 protected:
  Looks() : font_(QApplication::font()), palette_(QApplication::palette()) {}
  ~Looks() override {
    QApplication::setFont(font_);
    QApplication::setPalette(palette_);
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

  /// The controls with words on them that are shown and enabled.
  static std::vector<QWidget*> Worded(QWidget& window) {
    std::vector<QWidget*> worded;
    for (auto* control : window.findChildren<QWidget*>()) {
      if (!control->isVisible() || !control->isEnabled()) continue;
      const auto* label = qobject_cast<QLabel*>(control);
      const auto* button = qobject_cast<QAbstractButton*>(control);
      const auto* field = qobject_cast<QLineEdit*>(control);
      if ((label && !label->text().isEmpty()) || (button && !button->text().isEmpty()) ||
          (field && !field->displayText().isEmpty())) {
        worded.push_back(control);
      }
    }
    return worded;
  }

  QFont font_;
  QPalette palette_;
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

TEST_F(Looks, EverythingCanBeReadInEveryPalette) {
  for (const QPalette& palette : {palette_, DarkPalette()}) {
    QApplication::setPalette(palette);
    WizardDriver driver(script_);
    OnEveryPage(driver, [&](const char* page) {
      for (QWidget* control : Worded(driver.Window())) {
        const QRect place(control->mapTo(&driver.Window(), QPoint()), control->size());
        EXPECT_GE(Contrast(driver.Window().grab(place).toImage()), 4.5)
            << control->objectName().toStdString() << " on " << page;
      }
    });
    driver.Next();
    auto& list = driver.Get<QComboBox>("cmbDir2MysqlDatabases");
    list.showPopup();
    EXPECT_GE(Contrast(list.view()->grab().toImage()), 4.5) << "the open list";
    list.hidePopup();
  }
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

}  // namespace
}  // namespace dorvane::test
