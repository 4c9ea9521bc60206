// What a run tells the desktop over a session bus, on a bus of its own.
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QWindow>

#include "tests/support/process.h"
#include "tests/ui/print_qt.h"
#include "tests/ui/wizard/wizard_driver.h"

namespace dorvane::test {

namespace {

constexpr const char* kOtherConnection = "desktop";

/// A session bus, which Qt takes from the environment.
class Bus {
 public:
  Bus() : daemon_({"dbus-daemon", "--session", "--nofork", "--print-address=1"}, Output()) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    QByteArray address;
    while (!address.contains('\n')) {
      if (std::chrono::steady_clock::now() > end) throw std::runtime_error("no session bus");
      QThread::msleep(20);
      address = QByteArray::fromStdString(ReadFile(Output()));
    }
    // The daemon may have more to say.
    qputenv("DBUS_SESSION_BUS_ADDRESS", address.left(address.indexOf('\n')));
  }

 private:
  std::filesystem::path Output() const { return folder_.Path() / "address"; }

  TempFolder folder_;
  Process daemon_;
};

/// The desktop's side: notes what it is told.
class FakeDesktop : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

 public:
  FakeDesktop()
      : bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, kOtherConnection)) {
    bus_.registerService("org.freedesktop.Notifications");
    bus_.registerObject("/org/freedesktop/Notifications", this, QDBusConnection::ExportAllSlots);
    bus_.connect("", "", "com.canonical.Unity.LauncherEntry", "Update", this,
                 SLOT(Update(QString, QVariantMap)));
  }
  ~FakeDesktop() override { QDBusConnection::disconnectFromBus(kOtherConnection); }

  QStringList notifications;
  QString entry;
  QList<double> shares;  // -1: none is shown

 public slots:
  uint Notify(const QString& program, uint, const QString&, const QString& title,
              const QString& text, const QStringList&, const QVariantMap&, int) {
    notifications << program + '|' + title + '|' + text;
    return 1;
  }
  void Update(const QString& uri, const QVariantMap& properties) {
    entry = uri;
    const bool is_shown = properties["progress-visible"].toBool();
    shares << (is_shown ? properties["progress"].toDouble() : -1);
  }

 private:
  QDBusConnection bus_;
};

void TransferBothTables(WizardDriver& driver) {
  driver.GoTo(page::kTransfer);
  driver.Click("cmdTransferTables");
}

TEST(OnASessionBus, TheDesktopIsToldOfARunThatIsNotInFront) {
  FakeDesktop desktop;
  Script script;
  script.transfer = [](IConversionListener& listener, const NameList& tables) {
    listener.ConversionStarted(2, false);
    for (const std::string& table : tables) {
      listener.TableConversionStarted(table);
      listener.TableConversionSuccessed(table);
    }
    listener.ConversionEnded();
  };
  {
    WizardDriver driver(script);
    TransferBothTables(driver);
    EXPECT_TRUE(QTest::qWaitFor([&] { return desktop.shares.size() == 4; }));
    EXPECT_EQ(desktop.shares, (QList<double>{0, 0.5, 1, -1}));
    EXPECT_EQ(desktop.entry, "application://dorvane.desktop");
    EXPECT_TRUE(desktop.notifications.isEmpty()) << "the window is in front";
  }
  WizardDriver driver(script);
  QWindow other;  // of another program, as far as the wizard can see
  script.transfer = [&, convert = script.transfer](auto& listener, const NameList& tables) {
    QMetaObject::invokeMethod(
        &other,
        [&other] {
          other.show();
          other.requestActivate();
          EXPECT_TRUE(QTest::qWaitForWindowActive(&other));
        },
        Qt::BlockingQueuedConnection);
    convert(listener, tables);
  };
  TransferBothTables(driver);
  EXPECT_TRUE(QTest::qWaitFor([&] { return !desktop.notifications.isEmpty(); }));
  ASSERT_EQ(desktop.notifications.size(), 1);
  EXPECT_TRUE(desktop.notifications[0].startsWith(
      "Dorvane|Convert from MS SQL to MySQL|Transfer Complete!\nNo. of converted tables: 2\n"))
      << desktop.notifications[0].toStdString();
}

}  // namespace
}  // namespace dorvane::test

#include "desktop_test.moc"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const dorvane::test::Bus bus;
  const QApplication app(argc, argv);
  return RUN_ALL_TESTS();
}
