// The skins: whatever colours the desktop has, words can be read; a choice counts at once.
#include "ui/look/skins.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QMenu>
#include <QSettings>
#include <random>

#include "tests/ui/print_qt.h"
#include "tests/ui/readable_words.h"
#include "tests/ui/wizard/wizard_driver.h"
#include "ui/dialogs/frm_msg_box.h"
#include "ui/dialogs/message_box.h"
#include "ui/look/current_look.h"
#include "ui/schedule/frm_schedule.h"

namespace dorvane::test {

namespace {

using Role = QPalette::ColorRole;

void ExpectReadablePalette(const QPalette& palette, const char* name) {
  constexpr std::pair<Role, Role> kPairs[] = {{QPalette::WindowText, QPalette::Window},
                                              {QPalette::Text, QPalette::Base},
                                              {QPalette::Text, QPalette::AlternateBase},
                                              {QPalette::ButtonText, QPalette::Button},
                                              {QPalette::HighlightedText, QPalette::Highlight},
                                              {QPalette::Link, QPalette::Base},
                                              {QPalette::PlaceholderText, QPalette::Base},
                                              {QPalette::ToolTipText, QPalette::ToolTipBase}};
  for (const auto& [ink, ground] : kPairs) {
    EXPECT_GE(Contrast(palette.color(ink), palette.color(ground)), kReadable)
        << name << ": role " << ink << ' ' << palette.color(ink).name().toStdString() << " on "
        << palette.color(ground).name().toStdString();
  }
}

void ExpectReadableLook(const Look& look) {
  ExpectReadablePalette(look.window, "window");
  ExpectReadablePalette(look.page, "page");
  ExpectReadablePalette(look.field, "field");
  ExpectReadablePalette(look.navigation, "navigation");
  ExpectReadablePalette(look.message, "message");
  ExpectReadablePalette(look.panel, "panel");
  const std::pair<QColor, QColor> pairs[] = {
      {look.sidebar.current_step, look.sidebar.top},
      {look.sidebar.other_step, look.sidebar.bottom},
      {look.message_title, look.frame.title_bottom},
      {look.page.color(QPalette::WindowText), look.card_ground},
      {look.page.color(QPalette::Text), look.closed_field},
      {look.button.fore, look.button.back},
      {look.button.hover_fore, look.button.hover_back},
      {look.help.sign, look.help.ground},
      {look.help.hover_sign, look.help.hover_ground}};
  for (const auto& [ink, ground] : pairs) {
    EXPECT_GE(Contrast(ink, ground), kReadable)
        << ink.name().toStdString() << " on " << ground.name().toStdString();
  }
}

TEST(QuietLooks, CanBeReadOnAnyDesktop) {
  std::mt19937 random(3);
  const auto any = [&random] { return QColor::fromRgb(static_cast<QRgb>(random())); };
  for (int desktop = 0; desktop < 300; ++desktop) {
    QPalette palette(any(), any());
    for (const Role role : {QPalette::WindowText, QPalette::Base, QPalette::Highlight}) {
      palette.setColor(role, any());
    }
    ExpectReadableLook(QuietLook(false, palette));
    ExpectReadableLook(QuietLook(true, palette));
    if (testing::Test::HasFailure()) return;
  }
}

TEST(QuietLooks, TakeTheDesktopsColorsWhereTheyFit) {
  QPalette desktop = DarkPalette();
  desktop.setColor(QPalette::Highlight, QColor(230, 120, 60));
  const Look dark = QuietLook(true, desktop);
  EXPECT_EQ(dark.page.color(QPalette::Window).name(), desktop.color(QPalette::Window).name());
  EXPECT_EQ(dark.sidebar.current_marker.hslHue(), QColor(230, 120, 60).hslHue());
  const Look light = QuietLook(false, desktop);
  EXPECT_GT(light.page.color(QPalette::Window).lightness(), 200);
  EXPECT_NEAR(light.sidebar.current_marker.hslHue(), QColor(230, 120, 60).hslHue(), 3);
}

class SkinsTest : public testing::Test {
 protected:
  ~SkinsTest() override {
    QApplication::setPalette(palette_);
    QApplication::processEvents();
    ChooseSkin(kClassicSkin);
  }

  static int Lightness(QWidget& widget) {
    return widget.palette().color(QPalette::Window).lightness();
  }

  QPalette palette_ = QApplication::palette();
  Script script_;
};

TEST_F(SkinsTest, AChoiceFromTheMenuCountsAtOnceAndIsKept) {
  WizardDriver driver(script_);
  driver.Next();
  PlainEndpoint src(ServerKind::MsSql);
  PlainEndpoint dest(ServerKind::MySql);
  frmSchedule schedule(src, dest, {}, {});
  schedule.show();
  QWidget& page = driver.Get("fraStep1");
  const QColor classic = page.palette().color(QPalette::Window);

  driver.Click("cmdLook");
  auto& menu = driver.Get<QMenu>("mnuLook");
  ASSERT_TRUE(menu.isVisible());
  ASSERT_GE(menu.actions().size(), 3);
  EXPECT_TRUE(menu.actions().front()->isChecked()) << "the classic look is the default";
  QTest::keyClicks(&menu, "d");
  EXPECT_FALSE(menu.isVisible());
  EXPECT_LT(Lightness(page), 80);
  EXPECT_LT(Lightness(schedule), 80) << "in every open window";
  EXPECT_LT(driver.Window().grab().toImage().pixelColor(450, 400).lightness(), 80);
  EXPECT_EQ(QSettings("Dorvane", "Dorvane").value("Options/Current Skin"), "Dark");
  ExpectReadable(driver.Window(), "dark");

  driver.Get("cmdLook").setFocus();
  QTest::keyClick(&driver.Get("cmdLook"), Qt::Key_Space);
  ASSERT_TRUE(menu.isVisible());
  QTest::keyClick(&menu, Qt::Key_Down);
  QTest::keyClick(&menu, Qt::Key_Return);
  EXPECT_EQ(page.palette().color(QPalette::Window), classic);
}

TEST_F(SkinsTest, TheDesktopsPaletteIsFollowedAtOnce) {
  ChooseSkin(kDarkSkin);
  WizardDriver driver(script_);
  QPalette desktop = DarkPalette();
  desktop.setColor(QPalette::Window, QColor(60, 30, 30));
  QApplication::setPalette(desktop);
  QApplication::processEvents();
  EXPECT_EQ(driver.Get("fraStep0").palette().color(QPalette::Window), QColor(60, 30, 30));
}

TEST_F(SkinsTest, DialogsCanBeReadInEverySkinAndPalette) {
  InEverySkinAndPalette([](const std::string& where) {
    PlainEndpoint src(ServerKind::MsSql);
    PlainEndpoint dest(ServerKind::MySql);
    frmSchedule schedule(src, dest, {"Orders"}, {});
    schedule.show();
    ExpectReadable(schedule, where);
    frmMsgBox box;
    QTimer::singleShot(0, &box, [&] {
      ExpectReadable(box, where);
      const QColor ink = box.findChild<MessageText*>("lblMessage")->palette().color(QPalette::Text);
      EXPECT_GE(Contrast(ink, box.palette().color(QPalette::Window)), kReadable) << where;
      box.done(0);
    });
    box.Run(MessageBoxKind::YesNo, "Are you sure?", message_style::kQuestion, "", kAnswerYes);
  });
}

}  // namespace
}  // namespace dorvane::test
