// The whole wizard on real servers, driven by clicks and keys from the first page to Finish.
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QComboBox>
#include <QProgressBar>

#include "job/encryptor.h"
#include "job/endpoints.h"
#include "tests/support/servers.h"
#include "tests/ui/print_qt.h"
#include "tests/ui/wizard/wizard_driver.h"

namespace dorvane::test {

namespace {

using testing::HasSubstr;
using Boxes = std::vector<SeenBox>;

constexpr const char* kNoMsSql =
    "MS SQL Server can not be found at that server. Make sure that you entered the correct host "
    "name";
constexpr const char* kNoMySql =
    "MySQL Server can not be found at that server. Make sure that you entered the correct host "
    "name";
constexpr const char* kDenied = "Invalid username or password. Access denied for this user.";

/// Shared by all tests; every test has databases of its own.
PrivateMySql& MySql() {
  static PrivateMySql server;
  return server;
}
SandboxServer& MsSql() {
  static SandboxServer server({"Shop", "Empty", "Again"});
  return server;
}

/// Lines of values, without the blanks and line ends around them.
std::string Lines(const std::string& output) {
  return QString::fromStdString(output).trimmed().toStdString();
}
std::string MySqlRows(const std::string& query, const std::string& database) {
  return Lines(MySql().Query(query, database));
}
std::string MsSqlRows(const std::string& query, const std::string& database) {
  return Lines(MsSql().Script(query + "\ngo\n", database));
}

/// The box at the end of a transfer that took less than a minute.
void ExpectSummary(const SeenBox& box, int converted, int failed) {
  EXPECT_EQ(box.title, "Dorvane");
  EXPECT_THAT(box.text.toStdString(),
              testing::MatchesRegex(fmt::format("Transfer Complete!\r\nNo. of converted tables: {}"
                                                "\r\nNo. of Failed tables: {}\r\n"
                                                "Elapsed time: 00:00:[0-5][0-9]",
                                                converted, failed)));
}

class WizardOnServers : public testing::Test {
 protected:
  static QString Port(int port) { return QString::number(port); }
  static QString MsSqlPort() { return Port(MsSql().Port()); }
  static QString MySqlPort() { return Port(MySql().Port()); }

  struct ServerFields {
    const char *host, *port, *password, *connect;
  };
  static constexpr ServerFields kMsSqlSource{"txtSrcHost", "txtSrcPortnumber", "txtSrcPassword",
                                             "cmdSrcConnect"};
  static constexpr ServerFields kMySqlDestination{"txtDestHost", "txtDestPortNumber",
                                                  "txtDestPassword", "cmdDestConnect"};
  static constexpr ServerFields kMySqlSource{"txtDir2MysqlHost", "txtDir2MysqlPortNo",
                                             "txtDir2MysqlPassword", "cmdDir2MysqlConnect"};
  static constexpr ServerFields kMsSqlDestination{"txtDir2MsSqlHost", "txtDir2MsSqlPortNo",
                                                  "txtDir2MsSqlPassword", "cmdDir2MsSqlConnect"};

  void Connect(const ServerFields& fields, const QString& port, const QString& password) {
    driver_.Type(fields.host, "127.0.0.1");
    driver_.Type(fields.port, port);
    driver_.Type(fields.password, password);
    driver_.Click(fields.connect);
  }

  /// A wrong password and a dead port leave the page unconnected, with its texts.
  void ExpectRefusals(const ServerFields& fields, const QString& port, const QString& server,
                      const QString& not_found) {
    Connect(fields, port, "wrong");
    EXPECT_EQ(driver_.TakeBoxes(), (Boxes{{server, kDenied}}));
    const QString dead_port = Port(FreePort());
    Connect(fields, dead_port, "secret");
    EXPECT_EQ(driver_.TakeBoxes(), (Boxes{{server, not_found}}));
    EXPECT_TRUE(driver_.IsEnabled(fields.connect));
    EXPECT_EQ(driver_.Text(fields.host), "127.0.0.1");
    EXPECT_EQ(driver_.Text(fields.port), dead_port);
  }

  /// Types a name into a drop-down list, as who knows what to look for.
  void Pick(const char* list, const QString& name) {
    auto& databases = driver_.Get<QComboBox>(list);
    QTest::keyClicks(&databases, name);
    ASSERT_EQ(databases.currentText(), name);
  }

  void ClickTable(const char* list, int row) {
    auto& view = driver_.Get<NameListView>(list);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {},
                      view.visualRect(view.model()->index(row, 0)).center());
  }

  /// From the page of a connected destination: every table, then the transfer.
  void TransferAll() {
    driver_.Next();
    driver_.Click("cmdMLR");
    driver_.Next();
    ASSERT_EQ(driver_.Window().CurrentPage(), page::kTransfer);
    driver_.Click("cmdTransferTables");
  }

  std::string Config() { return ReadFile(driver_.Folder() / "config"); }

  WizardDriver driver_{MakeEndpoint};
};

TEST_F(WizardOnServers, ShopGoesFromMsSqlIntoANewMySqlDatabase) {
  MsSql().Script(
      "create table Customers (Id int identity(1,1) primary key, Name nvarchar(60) not null)\n"
      "create table [Order Lines] (Id int primary key, CustomerId int not null,"
      " Price decimal(19,4), constraint FK_Lines foreign key (CustomerId) references"
      " Customers (Id))\n"
      "create table Notes (Id int primary key, Body nvarchar(max))\n"
      "create table Ignored (Id int)\ngo\n"
      "insert Customers (Name) values (N'O''Neill'), (N'Zoë \"€\" \\')\n"
      "insert [Order Lines] values (1, 2, 1234567890.1234), (2, 1, null)\n"
      "insert Ignored values (1)\ngo\n",
      "Shop");
  MySql().Query("create database taken");
  driver_.Next();
  ExpectRefusals(kMsSqlSource, MsSqlPort(), "MS SQL Server", kNoMsSql);
  driver_.Next();
  EXPECT_EQ(driver_.Window().CurrentPage(), page::kMsSqlSource);
  EXPECT_EQ(driver_.TakeBoxes(), (Boxes{{"Dorvane", "Please click connect to database button"}}));
  Connect(kMsSqlSource, MsSqlPort(), "secret");
  ASSERT_TRUE(driver_.HasFocus("cmbSrcExistingDatabase"));
  Pick("cmbSrcExistingDatabase", "Shop");

  driver_.Next();
  EXPECT_EQ(driver_.Text("txtDestNewDbName"), "Shop");
  ExpectRefusals(kMySqlDestination, MySqlPort(), "MySQL Server", kNoMySql);
  driver_.Type("txtDestNewDbName", "taken");
  Connect(kMySqlDestination, MySqlPort(), "secret");
  const Boxes exists = driver_.TakeBoxes();
  ASSERT_EQ(exists.size(), 1u);
  EXPECT_EQ(exists[0].text, "Database taken already exists.");
  driver_.Type("txtDestNewDbName", " shop copy ");
  driver_.Click("cmdDestConnect");
  EXPECT_EQ(driver_.TakeBoxes(), Boxes{});
  EXPECT_EQ(driver_.Text("txtDestNewDbName"), "shop copy");

  driver_.Next();
  EXPECT_THAT(driver_.Names("lstSrcTables"),
              testing::UnorderedElementsAre("Customers", "Order Lines", "Notes", "Ignored"));
  driver_.Click("cmdMLR");
  const NameList& chosen = driver_.Names("lstDestTables");
  ClickTable("lstDestTables",
             static_cast<int>(std::ranges::find(chosen, "Ignored") - chosen.begin()));
  driver_.Click("cmdMRL");
  EXPECT_EQ(driver_.Names("lstSrcTables"), NameList{"Ignored"});
  driver_.Click("chkReplaceSpaceWithUnderscore");
  driver_.Click("chkConvertRelationShips");
  const NameList tables = driver_.Names("lstDestTables");
  driver_.Next();
  driver_.Click("cmdTransferTables");

  const Boxes boxes = driver_.TakeBoxes();
  ASSERT_EQ(boxes.size(), 1u) << boxes[0];
  ExpectSummary(boxes[0], 3, 0);
  EXPECT_EQ(driver_.Names("lstConvertedTables"), tables);
  EXPECT_EQ(driver_.Names("lstSelectedTables"), NameList{});
  EXPECT_EQ(driver_.LabelText("lblStatus"), "Conversion Completed.");
  EXPECT_EQ(driver_.Get<QProgressBar>("pbTablesProgress").maximum(), 6);
  EXPECT_EQ(driver_.Get<QProgressBar>("pbTablesProgress").value(), 6);

  EXPECT_EQ(MySqlRows("select * from Customers order by Id", "shop copy"),
            "1\tO'Neill\n2\tZoë \"€\" \\\\");
  EXPECT_EQ(MySqlRows("select * from Order_Lines order by Id", "shop copy"),
            "1\t2\t1234567890.1234\n2\t1\tNULL");
  EXPECT_EQ(MySqlRows("select count(*) from Notes", "shop copy"), "0");
  EXPECT_THAT(MySqlRows("show create table Order_Lines", "shop copy"),
              HasSubstr("FOREIGN KEY (`CustomerId`) REFERENCES `Customers` (`Id`)"));
  EXPECT_EQ(MySqlRows("show tables like 'Ignored'", "shop copy"), "");

  driver_.Click("cmdSchedule");
  EXPECT_EQ(driver_.scheduled, tables);
  driver_.Click("cmdNav4");
  EXPECT_TRUE(driver_.closed);
  const std::string password = Encryptor().Encrypt("secret");
  EXPECT_EQ(Config(), fmt::format("mssql\r\nfalse\r\n{}\r\n127.0.0.1\r\nsa\r\n{}\r\n"
                                  "{}\r\n127.0.0.1\r\nroot\r\n{}\r\n",
                                  MsSql().Port(), password, MySql().Port(), password));
}

// Not a click: every step is taken by access keys, Tab, arrows and typing.
TEST_F(WizardOnServers, TheKeyboardAloneConvertsMySqlIntoANewMsSqlDatabase) {
  MySql().Query(
      "create database stock character set utf8mb4; use stock;"
      "create table shelves (id int auto_increment primary key, place varchar(40) not null);"
      "insert into shelves (place) values ('north'), ('süd €');"
      "create table `odd items` (id int primary key, found datetime, shelf int,"
      " constraint fk_shelf foreign key (shelf) references shelves (id));"
      "insert into `odd items` values (7, '2024-02-29 12:30:59', 2), (8, null, null);");
  frmWizard& window = driver_.Window();
  const auto focus = [&] { return window.focusWidget() ? window.focusWidget() : &window; };
  const auto access_key = [&](Qt::Key key) {
    // A desktop gives the focus back when a box or the wait window goes; offscreen there is none.
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == &window; }));
    QTest::keyClick(focus(), key, Qt::AltModifier);
    // A button that is clicked by its access key shows itself pressed for a tenth of a second
    // first.
    QTest::qWait(150);
  };
  const auto fill = [&](Qt::Key key, const QString& text) {
    access_key(key);
    QTest::keyClick(focus(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(focus(), text);
  };
  const auto log_on = [&](const QString& port, const char* connect) {
    fill(Qt::Key_H, "127.0.0.1");
    fill(Qt::Key_O, port);
    fill(Qt::Key_P, "secret");
    access_key(Qt::Key_C);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !driver_.IsEnabled(connect); }))
        << testing::PrintToString(driver_.TakeBoxes());
  };

  access_key(Qt::Key_Y);
  access_key(Qt::Key_N);
  ASSERT_EQ(window.CurrentPage(), page::kMySqlSource);
  log_on(MySqlPort(), "cmdDir2MysqlConnect");
  ASSERT_TRUE(driver_.HasFocus("cmbDir2MysqlDatabases"));
  Pick("cmbDir2MysqlDatabases", "stock");
  access_key(Qt::Key_N);
  ASSERT_EQ(window.CurrentPage(), page::kMsSqlDestination);
  log_on(MsSqlPort(), "cmdDir2MsSqlConnect");
  EXPECT_FALSE(driver_.IsEnabled("txtDir2MsSqlNewDatabase")) << "created as proposed";

  access_key(Qt::Key_N);
  ASSERT_EQ(window.CurrentPage(), page::kTables);
  access_key(Qt::Key_A);
  QTest::keyClick(focus(), Qt::Key_Tab);
  QTest::keyClick(focus(), Qt::Key_Tab);
  ASSERT_TRUE(driver_.HasFocus("cmdMLR"));
  QTest::keyClick(focus(), Qt::Key_Space);
  access_key(Qt::Key_R);
  ASSERT_TRUE(driver_.Get<QCheckBox>("chkConvertRelationShips").isChecked());
  access_key(Qt::Key_N);
  ASSERT_EQ(window.CurrentPage(), page::kTransfer);
  access_key(Qt::Key_T);

  const Boxes boxes = driver_.TakeBoxes();
  ASSERT_EQ(boxes.size(), 1u);
  ExpectSummary(boxes[0], 2, 0);
  EXPECT_THAT(driver_.Names("lstConvertedTables"),
              testing::UnorderedElementsAre("shelves", "odd items"));
  EXPECT_EQ(MsSqlRows("select * from shelves order by id", "stock"), "1\tnorth\n2\tsüd €");
  EXPECT_EQ(MsSqlRows("select id, year(found), shelf from [odd items] order by id", "stock"),
            "7\t2024\t2\n8\tNULL\tNULL");
  EXPECT_EQ(MsSqlRows("select count(*) from INFORMATION_SCHEMA.REFERENTIAL_CONSTRAINTS", "stock"),
            "1");
  access_key(Qt::Key_F);
  EXPECT_TRUE(driver_.closed);
  EXPECT_THAT(Config(), testing::StartsWith(fmt::format(
                            "mysql\r\nfalse\r\n{}\r\n127.0.0.1\r\nroot\r\n", MySql().Port())));
}

// Three runs into one database, each wizard presetting what the one before has saved.
TEST(WizardAgain, MergesThenOverwritesWithTheFieldsOfTheLastRun) {
  MySql().Query(
      "create database shelf; use shelf;"
      "create table items (id int primary key, name varchar(20));"
      "insert into items values (1, 'one'), (2, 'two')");
  const TempFolder kept;
  const auto run = [&](const char* mode) {
    WizardDriver driver{MakeEndpoint};
    if (std::filesystem::exists(kept / "config")) {
      std::filesystem::copy(kept / "config", driver.Folder() / "config");
    }
    driver.Window().Load();
    driver.Click("optMySqlToMsSql");
    driver.Next();
    if (driver.Text("txtDir2MysqlPassword").isEmpty()) {
      driver.Type("txtDir2MysqlHost", "127.0.0.1");
      driver.Type("txtDir2MysqlPortNo", QString::number(MySql().Port()));
      driver.Type("txtDir2MysqlPassword", "secret");
    }
    driver.Click("cmdDir2MysqlConnect");
    QTest::keyClicks(&driver.Get<QComboBox>("cmbDir2MysqlDatabases"), "shelf");
    driver.Next();
    if (driver.Text("txtDir2MsSqlPassword").isEmpty()) {
      driver.Type("txtDir2MsSqlHost", "127.0.0.1");
      driver.Type("txtDir2MsSqlPortNo", QString::number(MsSql().Port()));
      driver.Type("txtDir2MsSqlPassword", "secret");
    }
    driver.Click("opnDir2MsSqlExistingDb");
    driver.Click(mode);
    driver.Click("cmdDir2MsSqlConnect");
    QTest::keyClicks(&driver.Get<QComboBox>("cmbDir2MsSqlExistingDatabase"), "Again");
    driver.Next();
    driver.Click("cmdMLR");
    driver.Next();
    driver.Click("cmdTransferTables");
    const Boxes boxes = driver.TakeBoxes();
    ASSERT_EQ(boxes.size(), 1u) << mode;
    ExpectSummary(boxes[0], 1, 0);
    driver.Click("cmdNav4");
    std::filesystem::copy(driver.Folder() / "config", kept / "config",
                          std::filesystem::copy_options::overwrite_existing);
  };
  const auto rows = [] { return MsSqlRows("select id, name from items order by id", "Again"); };

  run("opnDir2MsSqlMerge");
  EXPECT_EQ(rows(), "1\tone\n2\ttwo");
  MySql().Query("insert into items values (3, 'three')", "shelf");
  MsSql().Script(
      "update items set name = 'own' where id = 1\ninsert items values (9, 'nine')\ngo\n", "Again");
  run("opnDir2MsSqlMerge");
  EXPECT_EQ(rows(), "1\town\n2\ttwo\n3\tthree\n9\tnine") << "a merge loses nothing";
  run("opnDir2MsSqlOverwite");
  EXPECT_EQ(rows(), "1\tone\n2\ttwo\n3\tthree");
}

TEST_F(WizardOnServers, ServersTellWhatTheyAreAndHowLargeTheirTablesAre) {
  MySql().Query(
      "create database sized; use sized; create table t (id int primary key);"
      "insert into t values (1), (2), (3); analyze table t; create view v as select 1");
  driver_.Click("optMySqlToMsSql");
  driver_.Next();
  Connect(kMySqlSource, MySqlPort(), "secret");
  EXPECT_THAT(driver_.LabelText("lblServerInfo3").toStdString(),
              testing::MatchesRegex("(MariaDB|MySQL) [0-9.]+, (not )?encrypted, [0-9]+ databases"));
  Pick("cmbDir2MysqlDatabases", "sized");
  driver_.Next();
  Connect(kMsSqlDestination, MsSqlPort(), "secret");
  EXPECT_THAT(driver_.LabelText("lblServerInfo4").toStdString(),
              testing::MatchesRegex("Microsoft SQL Server [0-9.]+(, encrypted|, not encrypted)?"));
  driver_.Next();
  const QAbstractItemModel& tables = *driver_.Get<NameListView>("lstSrcTables").model();
  EXPECT_TRUE(QTest::qWaitFor([&] {
    return tables.index(0, 0).data(Qt::AccessibleTextRole).toString() == "t, 3 rows, 16.0 kB";
  })) << tables.index(0, 0).data(Qt::AccessibleTextRole).toString().toStdString();
  EXPECT_TRUE(driver_.TakeBoxes().empty());
}

TEST_F(WizardOnServers, ATableThatVanishedIsToldAndTheOthersAreConverted) {
  MySql().Query(
      "create database leaky; use leaky; create table here (id int primary key);"
      "insert into here values (1); create table gone (id int primary key);");
  driver_.Click("optMySqlToMsSql");
  driver_.Next();
  Connect(kMySqlSource, MySqlPort(), "secret");
  Pick("cmbDir2MysqlDatabases", "leaky");
  driver_.Next();
  Connect(kMsSqlDestination, MsSqlPort(), "secret");
  MySql().Query("drop table gone", "leaky");
  TransferAll();
  const Boxes boxes = driver_.TakeBoxes();
  ASSERT_EQ(boxes.size(), 2u);
  EXPECT_THAT(boxes[0].text.toStdString(), HasSubstr("gone"));
  ExpectSummary(boxes[1], 1, 1);
  EXPECT_THAT(driver_.Names("lstConvertedTables"), testing::UnorderedElementsAre("here", "gone"));
  EXPECT_THAT(driver_.Column("lstConvertedTables", 3),
              testing::UnorderedElementsAre("Done", "Failed"));
  EXPECT_EQ(driver_.Names("lstSelectedTables"), NameList{"gone"});
  EXPECT_EQ(MsSqlRows("select id from here", "leaky"), "1");
}

TEST_F(WizardOnServers, ADestinationThatDiedLeavesTheWayOut) {
  MySql().Query("create database orphan; use orphan; create table t (id int primary key)");
  SandboxServer mortal({"Target"});
  driver_.Click("optMySqlToMsSql");
  driver_.Next();
  Connect(kMySqlSource, MySqlPort(), "secret");
  Pick("cmbDir2MysqlDatabases", "orphan");
  driver_.Next();
  driver_.Click("opnDir2MsSqlExistingDb");
  Connect(kMsSqlDestination, Port(mortal.Port()), "secret");
  ASSERT_EQ(driver_.TakeBoxes(), Boxes{});
  mortal.Kill();
  TransferAll();
  EXPECT_EQ(driver_.TakeBoxes(), (Boxes{{"MS SQL Server", kNoMsSql}})) << "and no summary";
  EXPECT_FALSE(driver_.IsEnabled("cmdSchedule"));
  EXPECT_TRUE(driver_.IsEnabled("cmdTransferTables")) << "the page is given back";
  EXPECT_TRUE(driver_.IsEnabled("cmdNav2"));
  driver_.Click("cmdNav1");
  EXPECT_TRUE(driver_.closed);
  EXPECT_THAT(Config(), HasSubstr(std::to_string(mortal.Port()))) << "kept for the next run";
}

TEST_F(WizardOnServers, ClosingDuringATransferKeepsWholeRowsAndLeavesNoConnection) {
  MySql().Query(
      "create database flood; use flood; create table many (id int primary key, twice int);"
      "insert into many select seq, 2 * seq from " +
      Sequence(1, 300000) + " s");
  driver_.Click("optMySqlToMsSql");
  driver_.Next();
  Connect(kMySqlSource, MySqlPort(), "secret");
  Pick("cmbDir2MysqlDatabases", "flood");
  driver_.Next();
  Connect(kMsSqlDestination, MsSqlPort(), "secret");
  QTimer closing;
  QObject::connect(&closing, &QTimer::timeout, [&] {
    if (driver_.Get<QProgressBar>("pbRecordsProgress").value() < 500) return;
    closing.stop();
    EXPECT_FALSE(driver_.Window().close()) << "the row in hand comes first";
    EXPECT_TRUE(driver_.Window().isVisible());
  });
  closing.start(5);
  TransferAll();
  EXPECT_TRUE(driver_.closed);
  EXPECT_EQ(driver_.TakeBoxes(), Boxes{}) << "no summary for who has left";
  const int rows = std::stoi(MsSqlRows("select count(*) from many", "flood"));
  EXPECT_GE(rows, 500);
  EXPECT_LT(rows, 300'000) << "the rest of the table is left";
  EXPECT_EQ(MsSqlRows("select count(*) from many where twice = 2 * id", "flood"),
            std::to_string(rows));
  EXPECT_EQ(driver_.Names("lstSelectedTables"), NameList{"many"}) << "it is not converted";
  // A server notices a closed connection in its own time.
  const std::string open =
      "select command, info from information_schema.processlist"
      " where db = 'flood'";
  EXPECT_TRUE(QTest::qWaitFor([&] { return MySqlRows(open, "").empty(); }, 20'000))
      << MySqlRows(open, "");
}

}  // namespace
}  // namespace dorvane::test
