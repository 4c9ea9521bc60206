// The whole wizard on real servers, driven by clicks and keys from the first page to Finish.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QComboBox>
#include <QProgressBar>

#include "job/endpoints.h"
#include "tests/support/servers.h"
#include "tests/ui/print_qt.h"
#include "tests/ui/wizard/script_player.h"

namespace dorvane::test {

namespace {

using testing::HasSubstr;
using Boxes = std::vector<SeenBox>;

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

struct ServerFields {
  const char *host, *port, *password, *connect;
};
const std::map<int, ServerFields> kServerFields = {
    {page::kMsSqlSource, {"txtSrcHost", "txtSrcPortnumber", "txtSrcPassword", "cmdSrcConnect"}},
    {page::kMySqlDestination,
     {"txtDestHost", "txtDestPortNumber", "txtDestPassword", "cmdDestConnect"}},
    {page::kMySqlSource,
     {"txtDir2MysqlHost", "txtDir2MysqlPortNo", "txtDir2MysqlPassword", "cmdDir2MysqlConnect"}},
    {page::kMsSqlDestination,
     {"txtDir2MsSqlHost", "txtDir2MsSqlPortNo", "txtDir2MsSqlPassword", "cmdDir2MsSqlConnect"}}};

void LogOn(WizardDriver& driver, int page, const QString& port, const QString& password) {
  const ServerFields& fields = kServerFields.at(page);
  driver.Type(fields.host, "127.0.0.1");
  driver.Type(fields.port, port);
  driver.Type(fields.password, password);
  driver.Click(fields.connect);
}

/// Types a name into a drop-down list, as who knows what to look for.
void Pick(WizardDriver& driver, const char* list, const QString& name) {
  auto& databases = driver.Get<QComboBox>(list);
  QTest::keyClicks(&databases, name);
  ASSERT_EQ(databases.currentText(), name);
}

// ---- what scripts say of real servers

using Player = ScriptPlayer;

/// The parts of "database == statement == rows".
std::vector<std::string> Parts(const QString& rest) {
  std::vector<std::string> parts;
  for (const QString& part : rest.split(" == ")) parts.push_back(part.toStdString());
  return parts;
}

template <std::string (*query)(const std::string& query, const std::string& database)>
void Execute(Player&, const QString& rest) {
  const auto parts = Parts(rest);
  query(parts.at(1), parts.at(0));
}

template <std::string (*query)(const std::string& query, const std::string& database)>
void ExpectRows(Player&, const QString& rest) {
  const auto parts = Parts(rest);
  const QString rows = QString::fromStdString(query(parts.at(1), parts.at(0)));
  ExpectText(QString(rows).replace('\n', "\\n").replace('\t', "\\t"),
             TextIn(QString::fromStdString(parts.at(2))));
}

/// A letter together with Alt. A button that is clicked by it shows itself pressed for a tenth of a
/// second first.
void Access(Player& player, const QString& letter) {
  player.Activate();
  QTest::keyClick(player.driver->Window().focusWidget(), letter.front().toLatin1(),
                  Qt::AltModifier);
  QTest::qWait(150);
}

/// The field of an access key, from its beginning.
void Fill(Player& player, const QString& rest) {
  const auto [letter, text] = NameAndText(rest);
  Access(player, letter);
  QWidget* field = player.driver->Window().focusWidget();
  QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClicks(field, text);
}

void Matches(Player& player, const QString& rest) {
  const auto [name, expression] = NameAndText(rest);
  EXPECT_THAT(player.driver->LabelText(name).toStdString(),
              testing::MatchesRegex(expression.toStdString()));
}

void SoonDisabled(Player& player, const QString& name) {
  EXPECT_TRUE(QTest::qWaitFor([&] { return !player.driver->IsEnabled(name.toUtf8()); }));
}

/// What a screen reader says of the first entry.
void SoonSpoken(Player& player, const QString& rest) {
  const auto [name, text] = NameAndText(rest);
  const QModelIndex first = player.driver->Get<NameListView>(name).model()->index(0, 0);
  const auto spoken = [&] { return first.data(Qt::AccessibleTextRole).toString(); };
  EXPECT_TRUE(QTest::qWaitFor([&, text = text] { return spoken() == text; }))
      << spoken().toStdString();
}

const std::map<std::string, Verb> kServerVerbs = {
    {"mysql", Execute<MySqlRows>},
    {"mssql", Execute<MsSqlRows>},
    {"mysql-rows", ExpectRows<MySqlRows>},
    {"mssql-rows", ExpectRows<MsSqlRows>},
    {"log-on",
     [](Player& player, const QString& rest) {
       const QStringList words = rest.split(' ');
       LogOn(*player.driver, PageOf(words[0]), words[1], words[2]);
     }},
    {"pick",
     [](Player& player, const QString& rest) {
       const auto [list, name] = NameAndText(rest);
       Pick(*player.driver, list, name);
     }},
    {"access", Access},
    {"fill", Fill},
    {"matches", Matches},
    {"soon-disabled", SoonDisabled},
    {"soon-spoken", SoonSpoken},
};

class Scripts : public testing::TestWithParam<WizardScript> {};

TEST_P(Scripts, ArePlayedAsWritten) {
  ScriptPlayer player([] { return std::make_unique<WizardDriver>(MakeEndpoint); });
  player.words = {{"{mssql-port}", QString::number(MsSql().Port())},
                  {"{mysql-port}", QString::number(MySql().Port())},
                  {"{dead-port}", QString::number(FreePort())}};
  player.more_verbs = kServerVerbs;
  player.Play(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Servers, Scripts, testing::ValuesIn(ReadWizardScripts(SCRIPT_FOLDER)),
                         [](const auto& script) { return script.param.name; });

class WizardOnServers : public testing::Test {
 protected:
  /// Both servers connected, for a database of MySQL's; `existing`: into one that is there.
  void ConnectBoth(const char* database, int mssql_port, bool existing = false) {
    driver_.Click("optMySqlToMsSql");
    driver_.Next();
    LogOn(driver_, page::kMySqlSource, QString::number(MySql().Port()), "secret");
    Pick(driver_, "cmbDir2MysqlDatabases", database);
    driver_.Next();
    if (existing) driver_.Click("opnDir2MsSqlExistingDb");
    LogOn(driver_, page::kMsSqlDestination, QString::number(mssql_port), "secret");
    ASSERT_EQ(driver_.TakeBoxes(), Boxes{});
  }

  /// From the page of a connected destination: every table, then the transfer.
  void TransferAll() {
    driver_.GoTo(page::kTransfer);
    driver_.Click("cmdTransferTables");
  }

  WizardDriver driver_{MakeEndpoint};
};

TEST_F(WizardOnServers, ADestinationThatDiedLeavesTheWayOut) {
  MySql().Query("create database orphan; use orphan; create table t (id int primary key)");
  SandboxServer mortal({"Target"});
  ConnectBoth("orphan", mortal.Port(), true);
  mortal.Kill();
  TransferAll();
  const Boxes boxes = driver_.TakeBoxes();
  ASSERT_EQ(boxes.size(), 1u) << "and no summary";
  EXPECT_TRUE(boxes[0].text.startsWith("MS SQL Server can not be found")) << boxes[0];
  EXPECT_FALSE(driver_.IsEnabled("cmdSchedule"));
  EXPECT_TRUE(driver_.IsEnabled("cmdTransferTables")) << "the page is given back";
  EXPECT_TRUE(driver_.IsEnabled("cmdNav2"));
  driver_.Click("cmdNav1");
  EXPECT_TRUE(driver_.closed);
  EXPECT_THAT(ReadFile(driver_.Folder() / "config"), HasSubstr(std::to_string(mortal.Port())))
      << "kept for the next run";
}

TEST_F(WizardOnServers, ClosingDuringATransferKeepsWholeRowsAndLeavesNoConnection) {
  MySql().Query(
      "create database flood; use flood; create table many (id int primary key, twice int);"
      "insert into many select seq, 2 * seq from " +
      Sequence(1, 300000) + " s");
  ConnectBoth("flood", MsSql().Port());
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
