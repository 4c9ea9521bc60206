#include "ui/controls/gradient_button.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

#include "tests/ui/print_qt.h"

namespace dorvane {

namespace {

QPixmap RedSquare() {
  QPixmap picture(16, 16);
  picture.fill(Qt::red);
  return picture;
}

/// Properties that are numbers from 0.
struct Enumerated {
  const char* name;
  int last;
  bool is_seen = true;  // each of its values by itself
};
constexpr Enumerated kEnumerated[] = {{"ButtonStyle", 7},       {"CaptionAlign", 2},
                                      {"CaptionStyle", 2},      {"ButtonShape", 6},
                                      {"PictureAlign", 5},      {"GradientMode", 4},
                                      {"FontStyle", 15, false}, {"HoverColorLocks", 3, false}};

TEST(GradientButton, EnumeratedPropertiesTakeTheirRangeAndIgnoreTheRest) {
  for (const auto& [name, last, is_seen] : kEnumerated) {
    GradientButton button;
    for (int value = 0; value <= last; ++value) {
      ASSERT_TRUE(button.setProperty(name, value)) << name;
      EXPECT_EQ(button.property(name).toInt(), value) << name;
    }
    for (const int outside : {-1, last + 1, 1000, -1000}) {
      button.setProperty(name, outside);
      EXPECT_EQ(button.property(name).toInt(), last) << name << outside;
    }
  }
}

TEST(GradientButton, StackedPictureKeepsTheCaptionCentred) {
  GradientButton button;
  button.SetCaptionAlign(0);
  button.SetPictureAlign(4);
  EXPECT_EQ(button.CaptionAlign(), 0) << "there is no picture yet";
  button.SetPicture(RedSquare());
  EXPECT_EQ(button.CaptionAlign(), 2);
  button.SetCaptionAlign(1);
  EXPECT_EQ(button.CaptionAlign(), 2);
  button.SetPictureAlign(2);
  button.SetCaptionAlign(1);
  EXPECT_EQ(button.CaptionAlign(), 1);
}

TEST(GradientButton, HoverColoursFollowWhileLockedAndReleaseTheirLock) {
  GradientButton button;
  button.SetHoverColorLocks(3);
  button.SetBackColor(Qt::green);
  button.SetForeColor(Qt::blue);
  EXPECT_EQ(button.HoverBackColor(), QColor(Qt::green));
  EXPECT_EQ(button.HoverForeColor(), QColor(Qt::blue));
  button.SetHoverForeColor(Qt::red);
  EXPECT_EQ(button.HoverColorLocks(), 1);
  button.SetForeColor(Qt::black);
  EXPECT_EQ(button.HoverForeColor(), QColor(Qt::red));
  button.SetResetDefaultColors(true);
  EXPECT_EQ(button.HoverColorLocks(), 0);
  EXPECT_EQ(button.HoverBackColor(), button.BackColor());
  EXPECT_EQ(button.HoverForeColor(), button.ForeColor());
}

TEST(GradientButton, SettingsSurviveStoringAndAbsentKeysTakeDefaults) {
  QWidget window;
  GradientButton button(&window);
  const QVariantMap settings = {
      {"Caption", "A||B"},    {"CapAlign", 2},         {"BackStyle", 5},      {"Shape", 3},
      {"Gradient", 4},        {"cGradient", 0x0000FF}, {"cFore", 0xFF0000},   {"Focus", false},
      {"Image", RedSquare()}, {"ImgSize", 32},         {"ImgAlign", 5},       {"cFHover", 0x00FF00},
      {"Enabled", false},     {"cBack", 0x102030},     {"cBHover", 0x302010}, {"LockHover", 0},
      {"CapStyle", 1},        {"mPointer", 99},        {"mIcon", RedSquare()}};
  button.ReadProperties(settings);
  EXPECT_EQ(button.GradientColor(), QColor(255, 0, 0)) << "red is the lowest byte";
  EXPECT_EQ(button.BackColor(), QColor(0x30, 0x20, 0x10));
  EXPECT_EQ(button.PictureAlign(), 5);
  EXPECT_FALSE(button.Enabled());

  QVariantMap stored = button.WriteProperties();
  for (const auto& [key, value] : settings.asKeyValueRange()) {
    const bool is_default = key == "CapAlign" || key == "LockHover";
    EXPECT_EQ(stored.contains(key), !is_default) << key.toStdString();
    if (value.typeId() == QMetaType::Int && !is_default) {
      EXPECT_EQ(stored[key], value);
    }
  }

  button.ReadProperties({});
  EXPECT_TRUE(button.WriteProperties().isEmpty());
  EXPECT_EQ(button.Caption(), "");
  EXPECT_EQ(button.CaptionAlign(), 2);
  EXPECT_EQ(button.PictureSize(), 16);
  EXPECT_EQ(button.ForeColor(), QColor(Qt::black));
  EXPECT_EQ(button.BackColor(), window.palette().color(QPalette::Window));
  EXPECT_EQ(button.HoverBackColor(), button.BackColor());
  EXPECT_TRUE(button.Enabled());
  EXPECT_TRUE(button.ShowFocusRect());
}

TEST(GradientButton, IsClickedByMouseSpaceAndAccessKeyOnlyWhileEnabled) {
  QWidget window;
  GradientButton button(&window);
  button.SetCaption("Connect");
  button.SetAccessKey('C');
  button.resize(100, 30);
  window.show();
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  button.setFocus();
  QSignalSpy clicks(&button, &QAbstractButton::clicked);
  const auto press_all = [&] {
    QTest::mouseClick(&button, Qt::LeftButton);
    QTest::keyPress(&button, Qt::Key_Space);
    QTest::keyRelease(&button, Qt::Key_Space);
    QTest::keyClick(&window, Qt::Key_C, Qt::AltModifier);
    QTest::qWait(150);  // an access key holds the button down for a moment
  };
  press_all();
  EXPECT_EQ(clicks.count(), 3);
  button.SetEnabled(false);
  press_all();
  EXPECT_EQ(clicks.count(), 3);
  button.SetEnabled(true);
  button.SetCaption("&Disconnect");
  QTest::keyClick(&window, Qt::Key_D, Qt::AltModifier);
  QTest::qWait(150);
  EXPECT_EQ(clicks.count(), 4) << "the caption's own mark wins";
  EXPECT_EQ(button.Caption(), "&Disconnect");
}

TEST(GradientButton, OwnStateIsKeptWhileTheWindowIsDisabled) {
  QWidget window;
  GradientButton button(&window);
  window.setEnabled(false);
  EXPECT_FALSE(button.isEnabled());
  EXPECT_TRUE(button.Enabled());
}

TEST(GradientButton, CornersOutsideADiagonalOutlineAreNotTheButton) {
  GradientButton button;
  button.resize(120, 40);
  button.SetButtonShape(static_cast<int>(ButtonShape::ForwardDiagonal));
  QSignalSpy clicks(&button, &QAbstractButton::clicked);
  QTest::mouseClick(&button, Qt::LeftButton, {}, {2, 2});
  QTest::mouseClick(&button, Qt::LeftButton, {}, {117, 37});
  EXPECT_EQ(clicks.count(), 0);
  QTest::mouseClick(&button, Qt::LeftButton, {}, {2, 37});
  QTest::mouseClick(&button, Qt::LeftButton, {}, {60, 20});
  EXPECT_EQ(clicks.count(), 2);
}

// Every option must change what is seen; two that look alike are one option too many.
TEST(GradientButton, EveryOptionPaintsDifferently) {
  for (const auto& [name, last, is_seen] : kEnumerated) {
    if (!is_seen) continue;
    std::vector<QImage> seen;
    for (int value = 0; value <= last; ++value) {
      GradientButton button;
      button.resize(140, 60);
      button.SetCaption("Text");
      button.SetBackColor(QColor(150, 170, 210));
      button.SetHoverColorLocks(1);
      button.SetGradientColor(Qt::darkBlue);
      if (name == std::string_view("PictureAlign")) button.SetPicture(RedSquare());
      button.setProperty(name, value);
      // Hover styles show their outline only when pressed or under the mouse.
      button.setDown(value == 5 || value == 6);
      seen.push_back(button.grab().toImage());
    }
    for (std::size_t a = 0; a < seen.size(); ++a) {
      for (std::size_t b = a + 1; b < seen.size(); ++b) {
        EXPECT_NE(seen[a], seen[b]) << name << " " << a << " and " << b;
      }
    }
  }
}

TEST(GradientButton, StatesAreToldApart) {
  GradientButton button;
  button.resize(120, 32);
  button.SetCaption("Next >>");
  button.SetBackColor(Qt::white);
  button.SetHoverBackColor(Qt::yellow);
  const QImage normal = button.grab().toImage();
  QSignalSpy on_button(&button, &GradientButton::MouseOnButton);
  QHoverEvent enter(QEvent::HoverEnter, QPointF(60, 16), QPointF(60, 16), QPointF());
  QApplication::sendEvent(&button, &enter);
  const QImage hovered = button.grab().toImage();
  button.setDown(true);
  const QImage pressed = button.grab().toImage();
  button.setDown(false);
  button.SetEnabled(false);
  const QImage disabled = button.grab().toImage();
  EXPECT_NE(normal, hovered);
  EXPECT_NE(hovered, pressed);
  EXPECT_NE(normal, disabled);
  ASSERT_EQ(on_button.count(), 2) << "a disabled button has lost the mouse";
  EXPECT_TRUE(on_button[0][0].toBool());
  EXPECT_FALSE(on_button[1][0].toBool());
}

TEST(ButtonLayout, PartsStayInsideTheNaturalSizeAndOffEachOther) {
  ButtonLook look;
  look.caption = "Create||New Database";
  look.picture = RedSquare();
  const QFont font;
  for (int align = 0; align <= 5; ++align) {
    look.picture_align = static_cast<PictureAlign>(align);
    const QRectF bounds({}, NaturalSize(look, font));
    const ButtonLayout layout = LayOutButton(look, bounds, font);
    EXPECT_TRUE(bounds.contains(layout.picture)) << align;
    EXPECT_FALSE(layout.picture.intersects(layout.caption)) << align;
    EXPECT_GE(layout.caption.width(), QFontMetricsF(font).horizontalAdvance("New Database"));
    EXPECT_GE(layout.caption.height(), 2 * QFontMetricsF(font).height() - 1);
  }
}

}  // namespace
}  // namespace dorvane
