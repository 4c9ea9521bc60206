#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QCompleter>
#include <QSettings>
#include <QToolButton>
#include <thread>

#include "tests/ui/print_qt.h"
#include "tests/ui/wizard/wizard_driver.h"

namespace dorvane::test {

namespace {

class ConnectionPages : public testing::Test {
 protected:
  Script script_;
  WizardDriver driver_{script_};
};

TEST_F(ConnectionPages, EarlierConnectionsAreOfferedWithoutTheirPasswords) {
  script_.info = ServerInfo{"Microsoft SQL Server", "15.0.2000.5", true};
  driver_.Next();
  driver_.Type("txtSrcHost", "archive");
  driver_.Type("txtSrcPortnumber", "1444");
  driver_.Type("txtSrcUsername", "reader");
  driver_.Type("txtSrcPassword", "very secret");
  driver_.Click("cmdSrcConnect");
  EXPECT_EQ(driver_.LabelText("lblServerInfo1"),
            "Microsoft SQL Server 15.0.2000.5, encrypted, 2 databases");
  driver_.Click("cmdSrcDisconnect");
  EXPECT_EQ(driver_.LabelText("lblServerInfo1"), "");
  driver_.Type("txtSrcHost", "other");
  driver_.Type("txtSrcPortnumber", "1");
  driver_.Click("cmdSrcConnect");

  WizardDriver next(script_);
  next.Next();
  auto& host = next.Get<QLineEdit>("txtSrcHost");
  QTest::keyClick(&host, Qt::Key_Down);
  QAbstractItemView& offered = *host.completer()->popup();
  ASSERT_TRUE(QTest::qWaitFor([&] { return offered.isVisible(); }));
  EXPECT_EQ(offered.model()->index(0, 0).data().toString(), "other, port 1, reader");
  EXPECT_EQ(offered.model()->index(1, 0).data().toString(), "archive, port 1444, reader");
  QTest::keyClick(&offered, Qt::Key_Down);
  QTest::keyClick(&offered, Qt::Key_Down);
  EXPECT_EQ(offered.currentIndex().row(), 1);
  QTest::keyClick(&offered, Qt::Key_Return);
  EXPECT_FALSE(offered.isVisible());
  EXPECT_EQ(next.Text("txtSrcHost"), "archive");
  EXPECT_FALSE(next.Get<QLineEdit>("txtSrcHost").isReadOnly());
  EXPECT_EQ(next.Text("txtSrcPortnumber"), "1444");
  EXPECT_EQ(next.Text("txtSrcUsername"), "reader");
  const QSettings kept("Dorvane", "Dorvane");
  for (const QString& key : kept.allKeys()) {
    EXPECT_FALSE(kept.value(key).toStringList().join(' ').contains("very secret"))
        << key.toStdString();
  }
}

TEST_F(ConnectionPages, PasswordsShowAsAsterisksUnlessTheEyeIsOpen) {
  driver_.Next();
  auto& password = driver_.Get<QLineEdit>("txtSrcPassword");
  driver_.Type("txtSrcPassword", "secret");
  auto* eye = password.findChild<QToolButton*>();
  for (const char* shown : {"******", "secret", "******"}) {
    EXPECT_EQ(password.displayText(), shown);
    QTest::mouseClick(eye, Qt::LeftButton);
  }
}

TEST_F(ConnectionPages, ASlowServerLeavesTheOverlayMovingAndTakesNoClicks) {
  driver_.Next();
  std::atomic<bool> answered = false;
  std::atomic<int> ticks = 0;
  script_.databases = [&] {
    for (int i = 0; i < 2'000 && ticks < 6; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    answered = true;
    return NameList{"late"};
  };
  bool waited = false;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&] {
    const QWidget* wait = driver_.Window().findChild<QWidget*>("frmWait");
    if (answered || !wait || !wait->isVisible()) return;
    waited = true;
    ++ticks;
    // Clicks and keys for the window behind are lost.
    QTest::mouseClick(driver_.Window().windowHandle(), Qt::LeftButton, {},
                      driver_.Get("cmdNav2").mapTo(&driver_.Window(), QPoint(20, 10)));
    QTest::keyClick(driver_.Window().windowHandle(), Qt::Key_B, Qt::AltModifier);
  });
  timer.start(20);
  driver_.Click("cmdSrcConnect");
  timer.stop();
  EXPECT_GT(ticks, 5);
  EXPECT_TRUE(waited);
  EXPECT_EQ(driver_.Window().CurrentPage(), 1);
  EXPECT_EQ(driver_.Names("cmbSrcExistingDatabase"), NameList{"late"});
  EXPECT_FALSE(driver_.Window().findChild<QWidget*>("frmWait")->isVisible());
}

TEST_F(ConnectionPages, TheProgramEndsThoughAServerNeverAnswers) {
  driver_.Next();
  script_.databases = [this]() -> std::optional<NameList> {
    while (driver_.ended == 0) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return std::nullopt;
  };
  QTimer::singleShot(400, &driver_.Window(), [&] {
    EXPECT_FALSE(driver_.Window().close());
    EXPECT_EQ(driver_.LabelText("lblWait"), "Stopping.......");
    EXPECT_FALSE(driver_.Window().close());
    EXPECT_EQ(driver_.ended, 1) << "the second request";
  });
  driver_.Click("cmdSrcConnect");
  EXPECT_TRUE(QTest::qWaitFor([&] { return driver_.closed; })) << "it has answered after all";
}

}  // namespace
}  // namespace dorvane::test
