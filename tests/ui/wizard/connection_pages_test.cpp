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

using Boxes = std::vector<SeenBox>;

class ConnectionPages : public testing::Test {
 protected:
  void GoToDestination() {
    driver_.Next();
    driver_.Click("cmdSrcConnect");
    driver_.Next();
    ASSERT_EQ(driver_.Window().CurrentPage(), page::kMySqlDestination);
  }
  const IDatabase& Src() { return *driver_.Window().Session().src; }
  const IDatabase& Dest() { return *driver_.Window().Session().dest; }
  QString Caption(const char* button) { return driver_.Get<GradientButton>(button).Caption(); }
  QStringList Entries(const char* list) {
    QStringList entries;
    auto& box = driver_.Get<QComboBox>(list);
    for (int i = 0; i < box.count(); ++i) entries << box.itemText(i);
    return entries;
  }

  Script script_;
  WizardDriver driver_{script_};
};

TEST_F(ConnectionPages, SourceConnectFillsTheListAndDisconnectEmptiesIt) {
  driver_.Next();
  EXPECT_FALSE(driver_.IsEnabled("cmbSrcExistingDatabase"));
  driver_.Click("cmdSrcConnect");
  EXPECT_EQ(Entries("cmbSrcExistingDatabase"), (QStringList{"master", "Sales"}));
  EXPECT_EQ(driver_.Get<QComboBox>("cmbSrcExistingDatabase").currentText(), "master");
  EXPECT_TRUE(driver_.HasFocus("cmbSrcExistingDatabase"));
  EXPECT_FALSE(driver_.IsEnabled("cmdSrcConnect"));
  EXPECT_TRUE(driver_.IsEnabled("cmdSrcDisconnect"));
  EXPECT_EQ(Src().Server(), "localhost");
  EXPECT_EQ(Src().PortNo(), 1433);

  driver_.Click("cmdSrcDisconnect");
  EXPECT_TRUE(Entries("cmbSrcExistingDatabase").isEmpty());
  EXPECT_FALSE(driver_.IsEnabled("cmbSrcExistingDatabase"));
  EXPECT_TRUE(driver_.IsEnabled("cmdSrcConnect"));
  EXPECT_FALSE(driver_.IsEnabled("cmdSrcDisconnect"));
  EXPECT_TRUE(driver_.HasFocus("cmdSrcConnect"));
}

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

TEST_F(ConnectionPages, TheEyeShowsThePassword) {
  driver_.Next();
  auto& password = driver_.Get<QLineEdit>("txtSrcPassword");
  driver_.Type("txtSrcPassword", "secret");
  EXPECT_NE(password.displayText(), "secret");
  auto* eye = password.findChild<QToolButton*>();
  QTest::mouseClick(eye, Qt::LeftButton);
  EXPECT_EQ(password.displayText(), "secret");
  QTest::mouseClick(eye, Qt::LeftButton);
  EXPECT_NE(password.displayText(), "secret");
}

TEST_F(ConnectionPages, AConnectedPageKeepsWhatItWasConnectedWith) {
  driver_.Next();
  driver_.Type("txtSrcHost", "first");
  driver_.Click("cmdSrcConnect");
  driver_.Type("txtSrcHost", "second");
  EXPECT_EQ(driver_.Text("txtSrcHost"), "first");
  for (const char* field : {"chkWinAuth", "cmbSrcEncryption"}) {
    EXPECT_FALSE(driver_.IsEnabled(field)) << field;
  }
  driver_.Click("cmdSrcDisconnect");
  driver_.Type("txtSrcHost", "second");
  EXPECT_EQ(driver_.Text("txtSrcHost"), "second");
  EXPECT_TRUE(driver_.IsEnabled("chkWinAuth"));
}

TEST_F(ConnectionPages, TheDirectionMayBeChosenAgain) {
  driver_.Next();
  driver_.Click("cmdSrcConnect");
  driver_.Back();
  driver_.Click("optMsSqlToMySql");
  driver_.Next();
  EXPECT_TRUE(driver_.IsEnabled("cmdSrcConnect")) << "its fields were emptied";
  EXPECT_FALSE(driver_.IsEnabled("cmdSrcDisconnect"));
  driver_.Back();
  driver_.Click("optMySqlToMsSql");
  driver_.Next();
  driver_.Type("txtDir2MysqlPassword", "secret");
  driver_.Click("cmdDir2MysqlConnect");
  driver_.Next();
  driver_.Type("txtDir2MsSqlHost", "elsewhere");
  driver_.Click("cmdDir2MsSqlConnect");
  driver_.Back();
  driver_.Back();
  driver_.Click("optMySqlToMsSql");
  driver_.Next();
  driver_.Next();
  EXPECT_EQ(Src().Password(), "secret") << "the new endpoint has the fields of the page";
  EXPECT_EQ(Src().PortNo(), 3306);
  driver_.Next();
  EXPECT_EQ(driver_.Window().CurrentPage(), page::kTables);
  EXPECT_EQ(Dest().Server(), "elsewhere");
}

TEST_F(ConnectionPages, InvalidFieldsAreToldAndTakeTheFocus) {
  driver_.Next();
  for (const char* port : {"   ", "abc"}) {
    driver_.Type("txtSrcPortnumber", port);
    driver_.Click("cmdSrcConnect");
    EXPECT_EQ(driver_.TakeBoxes(), (Boxes{{"Dorvane", "Please enter a valid port number"}}));
    EXPECT_TRUE(driver_.HasFocus("txtSrcPortnumber"));
  }
  driver_.Type("txtSrcPortnumber", " 1433");
  driver_.Type("txtSrcUsername", " ");
  driver_.Click("cmdSrcConnect");
  EXPECT_EQ(driver_.TakeBoxes(), (Boxes{{"Dorvane", "Please enter a valid username"}}));
  EXPECT_TRUE(driver_.HasFocus("txtSrcUsername"));
  EXPECT_TRUE(driver_.IsEnabled("cmdSrcConnect"));
  driver_.Click("chkWinAuth");
  driver_.Click("cmdSrcConnect");
  EXPECT_TRUE(driver_.TakeBoxes().empty());
  EXPECT_FALSE(driver_.IsEnabled("cmdSrcConnect"));
}

TEST_F(ConnectionPages, APortThatNoServerHasIsThePagesFailure) {
  driver_.Next();
  driver_.Type("txtSrcPortnumber", "70000");
  driver_.Click("cmdSrcConnect");
  EXPECT_EQ(driver_.TakeBoxes(), (Boxes{{"Dorvane", "Can not connect to server: Overflow"}}));
  EXPECT_TRUE(driver_.IsEnabled("cmdSrcConnect"));
}

TEST_F(ConnectionPages, AFailedConnectLeavesThePageAsItWas) {
  driver_.Next();
  script_.databases = [this]() -> std::optional<NameList> {
    script_.host->ConnectionFailed({"can not be found", "log", "MS SQL Server"});
    return std::nullopt;
  };
  driver_.Click("cmdSrcConnect");
  EXPECT_EQ(driver_.TakeBoxes(), (Boxes{{"MS SQL Server", "can not be found"}}));
  EXPECT_TRUE(driver_.IsEnabled("cmdSrcConnect"));
  EXPECT_EQ(driver_.Text("txtSrcHost"), "localhost");
  script_.databases = []() -> std::optional<NameList> { throw std::runtime_error("odd"); };
  driver_.Click("cmdSrcConnect");
  EXPECT_EQ(driver_.TakeBoxes(), (Boxes{{"Dorvane", "Can not connect to server: odd"}}));
}

TEST_F(ConnectionPages, WindowsLoginGreysTheLoginAndReachesTheEndpointAtOnce) {
  driver_.Next();
  driver_.Click("chkWinAuth");
  EXPECT_TRUE(Src().WinNTAuthentication());
  for (const char* field : {"txtSrcUsername", "txtSrcPassword"}) {
    EXPECT_FALSE(driver_.IsEnabled(field));
    EXPECT_EQ(driver_.Get(field).palette().color(QPalette::Base), QColor(224, 224, 224));
  }
  driver_.Click("chkWinAuth");
  EXPECT_FALSE(Src().WinNTAuthentication());
  EXPECT_TRUE(driver_.IsEnabled("txtSrcUsername"));
  EXPECT_EQ(driver_.Get("txtSrcUsername").palette().color(QPalette::Base), QColor(255, 255, 255));
}

TEST_F(ConnectionPages, EncryptionReachesTheEndpointAndAsksForAFileOnlyToVerify) {
  driver_.Next();
  auto& list = driver_.Get<QComboBox>("cmbSrcEncryption");
  auto& file = driver_.Get<QLineEdit>("txtSrcCaFile");
  const auto choose = [&list](int key) { QTest::keyClick(&list, static_cast<Qt::Key>(key)); };
  EXPECT_EQ(Entries("cmbSrcEncryption"), (QStringList{"Offered", "Required", "Verified"}));
  EXPECT_TRUE(file.isHidden());
  driver_.Click("cmdSrcConnect");
  EXPECT_EQ(Src().Settings().encryption, ado::Encryption::Offered);
  driver_.Click("cmdSrcDisconnect");
  choose(Qt::Key_End);
  EXPECT_FALSE(file.isHidden());
  driver_.Type("txtSrcCaFile", "/etc/ca.pem");
  driver_.Click("cmdSrcConnect");
  EXPECT_EQ(Src().Settings().encryption, ado::Encryption::Verified);
  EXPECT_EQ(Src().Settings().ca_file, "/etc/ca.pem");
  driver_.Click("cmdSrcDisconnect");
  choose(Qt::Key_Up);
  EXPECT_TRUE(file.isHidden());
  driver_.Click("cmdSrcConnect");
  EXPECT_EQ(Src().Settings().encryption, ado::Encryption::Required);
  EXPECT_EQ(Src().Settings().ca_file, "");
  driver_.Back();
  driver_.Click("optMySqlToMsSql");
  EXPECT_EQ(list.currentText(), "Offered");
}

TEST_F(ConnectionPages, PasswordsShowAsAsterisks) {
  auto& field = driver_.Get<QLineEdit>("txtSrcPassword");
  field.setText("abc");
  EXPECT_EQ(field.displayText(), "***");
  EXPECT_EQ(field.maxLength(), 40);
  EXPECT_EQ(driver_.Get<QLineEdit>("txtSrcHost").maxLength(), 50);
  EXPECT_EQ(driver_.Get<QLineEdit>("txtDestHost").maxLength(), 40);
}

TEST_F(ConnectionPages, CreatesADatabaseUnderTheTrimmedName) {
  GoToDestination();
  EXPECT_EQ(Caption("cmdDestConnect"), "Create New");
  EXPECT_EQ(driver_.Text("txtDestNewDbName"), "master") << "the source's name is proposed";
  driver_.Type("txtDestUserName", " ");
  driver_.Type("txtDestNewDbName", "   ");
  driver_.Click("cmdDestConnect");
  EXPECT_EQ(driver_.TakeBoxes(), (Boxes{{"Dorvane", "Please Enter the New Database Name"}}))
      << "no user name is asked for";
  EXPECT_TRUE(driver_.HasFocus("txtDestNewDbName"));

  driver_.Type("txtDestNewDbName", " my copy ");
  driver_.Click("cmdDestConnect");
  EXPECT_EQ(script_.created, NameList{"my copy"});
  EXPECT_FALSE(driver_.IsEnabled("txtDestNewDbName"));
  EXPECT_FALSE(driver_.IsEnabled("optExistingDb"));
  EXPECT_FALSE(driver_.IsEnabled("optNewDb"));
  EXPECT_FALSE(driver_.IsEnabled("cmdDestConnect"));
  EXPECT_TRUE(driver_.IsEnabled("cmdDestDisconnect"));
  driver_.Next();
  EXPECT_EQ(Dest().DbName(), "my copy");
}

TEST_F(ConnectionPages, AFailedCreationKeepsThePageNotConnected) {
  GoToDestination();
  script_.create = [](const std::string&) { return false; };
  driver_.Click("cmdDestConnect");
  EXPECT_TRUE(driver_.IsEnabled("cmdDestConnect"));
  EXPECT_TRUE(driver_.IsEnabled("txtDestNewDbName"));
  script_.create = [](const std::string&) -> bool { throw RunTimeError(57, "x", "disk"); };
  driver_.Click("cmdDestConnect");
  EXPECT_EQ(driver_.TakeBoxes(),
            (Boxes{{"Dorvane", "Error number 57 - Can not connect to the server disk"}}));
}

TEST_F(ConnectionPages, ExistingDatabaseModeAndDisconnect) {
  GoToDestination();
  driver_.Click("optExistingDb");
  EXPECT_EQ(Caption("cmdDestConnect"), "Connect");
  EXPECT_TRUE(driver_.IsEnabled("opnOverwite"));
  EXPECT_FALSE(driver_.IsEnabled("txtDestNewDbName"));
  driver_.Click("opnOverwite");
  EXPECT_EQ(Src().ConvertMode(), 2) << "the mode goes to the source";
  EXPECT_EQ(Dest().ConvertMode(), 1);
  driver_.Click("opnMerge");
  EXPECT_EQ(Src().ConvertMode(), 1);
  driver_.Click("cmdDestConnect");
  EXPECT_TRUE(driver_.IsEnabled("cmbDestExistingDatabase"));
  driver_.Get<QComboBox>("cmbDestExistingDatabase").setCurrentText("Sales");
  driver_.Next();
  EXPECT_EQ(Dest().DbName(), "Sales");
  driver_.Back();

  driver_.Click("cmdDestDisconnect");
  EXPECT_TRUE(driver_.Get<QRadioButton>("optExistingDb").isChecked());
  EXPECT_EQ(Caption("cmdDestConnect"), "Connect");
  EXPECT_TRUE(Entries("cmbDestExistingDatabase").isEmpty());
  EXPECT_FALSE(driver_.IsEnabled("cmbDestExistingDatabase"));
  EXPECT_TRUE(driver_.IsEnabled("optNewDb"));
  driver_.Click("optNewDb");
  EXPECT_EQ(Caption("cmdDestConnect"), "Create New Database");
  EXPECT_FALSE(driver_.IsEnabled("opnMerge"));
  EXPECT_TRUE(driver_.IsEnabled("txtDestNewDbName"));
}

TEST_F(ConnectionPages, MsSqlDestinationAsksForAUserAndFocusesTheLoginBox) {
  driver_.Click("optMySqlToMsSql");
  driver_.Next();
  driver_.Click("cmdDir2MysqlConnect");
  driver_.Next();
  driver_.Get<QLineEdit>("txtDir2MsSqlUsername").clear();
  driver_.Click("cmdDir2MsSqlConnect");
  EXPECT_EQ(driver_.TakeBoxes(), (Boxes{{"Dorvane", "Please enter a valid username"}}));
  EXPECT_TRUE(driver_.HasFocus("chkDir2MsSqlAuth"));
  EXPECT_TRUE(script_.created.empty());
  driver_.Click("chkDir2MsSqlAuth");
  EXPECT_TRUE(Dest().WinNTAuthentication());
  driver_.Click("cmdDir2MsSqlConnect");
  EXPECT_EQ(script_.created, NameList{"master"});
}

TEST_F(ConnectionPages, SwitchingTheDirectionEmptiesPages1And2Only) {
  driver_.Click("optMySqlToMsSql");
  driver_.Next();
  driver_.Type("txtDir2MysqlHost", "kept");
  driver_.Back();
  driver_.Click("optMsSqlToMySql");
  EXPECT_EQ(Src().Kind(), ServerKind::MsSql);
  EXPECT_EQ(Src().UserId(), "sa");
  EXPECT_EQ(Dest().PortNo(), 3306);
  GoToDestination();
  driver_.Click("cmdDestConnect");
  driver_.Back();
  driver_.Back();
  driver_.Click("optMySqlToMsSql");
  EXPECT_EQ(Src().Kind(), ServerKind::MySql);
  EXPECT_EQ(Dest().Kind(), ServerKind::MsSql);
  EXPECT_EQ(driver_.Text("txtSrcHost"), "");
  EXPECT_EQ(driver_.Text("txtDestUserName"), "");
  EXPECT_EQ(driver_.Text("txtDir2MysqlHost"), "kept");
  EXPECT_TRUE(driver_.IsEnabled("cmdSrcConnect"));
  EXPECT_TRUE(driver_.IsEnabled("cmdDestConnect"));
  EXPECT_TRUE(driver_.Names("lstSrcTables").empty());
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
  EXPECT_EQ(Entries("cmbSrcExistingDatabase"), QStringList{"late"});
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
