// The wizard on a display with a window manager, driven by the keys of the display itself.
#include <gtest/gtest.h>

#include <thread>

#include "tests/support/process.h"
#include "tests/ui/print_qt.h"
#include "tests/ui/wizard/wizard_driver.h"
#include "ui/controls/window_style.h"

namespace dorvane::test {

namespace {

using std::chrono::milliseconds;

/// A display with openbox on it; QApplication takes it from the environment.
class Desktop {
 public:
  Desktop()
      : server_({"Xvfb", "-displayfd", "1", "-screen", "0", "1600x1200x24", "-nolisten", "tcp"},
                display_) {
    std::string number;
    Await("no display", [&] { return !(number = LastNumber(ReadFile(display_))).empty(); });
    qputenv("DISPLAY", QByteArray::fromStdString(":" + number));
    qputenv("QT_QPA_PLATFORM", "xcb");
    manager_.emplace(std::vector<std::string>{"openbox", "--sm-disable"}, manager_output_);
    Await("no window manager", [] { return Run({"xdotool", "get_num_desktops"}).status == 0; });
  }

 private:
  /// The last line when it is whole and a number. Others stand before it: what the server says of
  /// displays that are taken.
  static std::string LastNumber(std::string_view output) {
    if (!output.ends_with('\n')) return {};
    output.remove_suffix(1);
    output.remove_prefix(output.rfind('\n') + 1);
    const bool is_number = output.find_first_not_of("0123456789") == std::string_view::npos;
    return std::string(is_number ? output : "");
  }

  void Await(const std::string& missing, const std::function<bool()>& reached) const {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!reached()) {
      if (std::chrono::steady_clock::now() > end) {
        throw std::runtime_error(missing + "; they said: " + ReadFile(display_) +
                                 ReadFile(manager_output_));
      }
      std::this_thread::sleep_for(milliseconds(20));
    }
  }

  TempFolder folder_;
  std::filesystem::path display_ = folder_.Path() / "display";
  std::filesystem::path manager_output_ = folder_.Path() / "manager";
  Process server_;
  std::optional<Process> manager_;
};

/// Keys as a keyboard sends them, to whatever window has the focus: "Alt+n", "a".
void Press(const std::vector<std::string>& keys) {
  std::vector<std::string> command = {"xdotool", "key", "--delay", "1"};
  command.insert(command.end(), keys.begin(), keys.end());
  ASSERT_EQ(Run(command).status, 0);
}

/// Counts how often a widget appears.
class Appearances : public QObject {
 public:
  explicit Appearances(QWidget& widget) : QObject(&widget) { widget.installEventFilter(this); }
  int count = 0;

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Show) ++count;
    return false;
  }
};

class OnADesktop : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(QTest::qWaitForWindowActive(&driver_.Window(), 10'000));
    QTest::qWait(200);  // the window manager has its last word on the focus
  }

  static bool WaitFor(const std::function<bool()>& reached) {
    return QTest::qWaitFor(reached, 3'000);
  }
  bool WaitForPage(int page) {
    return WaitFor([=, this] { return driver_.Window().CurrentPage() == page; });
  }

  Script script_;
  WizardDriver driver_{script_};
};

TEST_F(OnADesktop, EveryKeyArrivesAfterTwoHundredQuickAnswers) {
  int answers = 0;
  script_.tables = [&] {
    std::this_thread::sleep_for(milliseconds(++answers % 3 * 15));
    return NameList{"Customers"};
  };
  driver_.Next();
  driver_.Click("cmdSrcConnect");
  QString typed = "localhost";
  auto& host = driver_.Get<QLineEdit>("txtDestHost");
  const auto& waits = *std::make_unique<Appearances>(driver_.Get("frmWait")).release();
  int windows_with_focus = 0;
  QObject::connect(qApp, &QGuiApplication::focusWindowChanged, &driver_.Window(),
                   [&] { ++windows_with_focus; });
  int quick = 0;
  for (int round = 0; quick < 200 && round < 400; ++round) {
    const int waits_before = waits.count;
    // The last key is on its way while the server is asked.
    Press({"Alt+n", "End", "x"});
    ASSERT_TRUE(WaitForPage(page::kMySqlDestination)) << round;
    typed += "x";
    // A computer that is busy with other things may need long for a quick answer.
    if (waits.count > waits_before) {
      Press({"Alt+b"});
      ASSERT_TRUE(WaitForPage(page::kMsSqlSource)) << round;
      host.setText(typed = "y");
      continue;
    }
    ++quick;
    ASSERT_TRUE(WaitFor([&] { return host.text() == typed; }))
        << "round " << round << ": " << host.text().toStdString() << " on page "
        << driver_.Window().CurrentPage() << ", focus on "
        << driver_.Window().focusWidget()->objectName().toStdString();
    if (typed.size() == 30) host.setText(typed = "y");
    Press({"Alt+b"});
    ASSERT_TRUE(WaitForPage(page::kMsSqlSource)) << round;
  }
  EXPECT_EQ(quick, 200);
  EXPECT_EQ(windows_with_focus, 0) << "no other window took the focus";
}

TEST_F(OnADesktop, TheKeysAreBackAfterASlowAnswer) {
  driver_.Next();
  script_.databases = [] {
    std::this_thread::sleep_for(milliseconds(900));
    return NameList{"master", "Sales"};
  };
  bool waited = false;
  QTimer timer;
  timer.callOnTimeout([&] {
    const auto* overlay = driver_.Window().findChild<QWidget*>("frmWait");
    if (waited || !overlay || !overlay->isVisible()) return;
    waited = true;
    Press({"Alt+b"});  // lost: the window waits
  });
  timer.start(20);
  Press({"Alt+c"});
  ASSERT_TRUE(WaitFor([&] { return driver_.HasFocus("cmbSrcExistingDatabase"); }));
  EXPECT_TRUE(waited);
  Press({"S"});
  EXPECT_TRUE(WaitFor(
      [&] { return driver_.Get<QComboBox>("cmbSrcExistingDatabase").currentText() == "Sales"; }));
  EXPECT_EQ(driver_.Window().CurrentPage(), page::kMsSqlSource);
}

}  // namespace
}  // namespace dorvane::test

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const dorvane::test::Desktop desktop;
  QApplication app(argc, argv);
  QApplication::setStyle(std::make_unique<dorvane::WindowStyle>().release());
  return RUN_ALL_TESTS();
}
