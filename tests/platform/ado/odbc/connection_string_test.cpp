#include "platform/ado/odbc/connection_string.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/ado/odbc/driver.h"
#include "platform/ado/types.h"
#include "tests/support/table.h"

namespace dorvane::ado::odbc {

namespace {

using testing::HasSubstr;
using testing::Not;

const Driver kFreeTds = {DriverKind::FreeTds, "FreeTDS"};
const Driver kMicrosoft = {DriverKind::Microsoft, "ODBC Driver 18 for SQL Server"};

ConnectionSettings Settings() {
  ConnectionSettings settings;
  settings.server = "db1";
  settings.port = 1444;
  settings.user_id = "sa";
  settings.password = "secret";
  settings.database = "shop";
  return settings;
}

TEST(DriverChoice, TakesTheBestDriverThatIsRegistered) {
  const std::vector<std::string> all = {"SQLite3", "FreeTDS", "ODBC Driver 17 for SQL Server",
                                        "ODBC Driver 18 for SQL Server"};
  EXPECT_EQ(ChooseDriver(all, {}).name, "ODBC Driver 18 for SQL Server");
  EXPECT_EQ(ChooseDriver({all[0], all[1], all[2]}, {}).name, "ODBC Driver 17 for SQL Server");
  EXPECT_EQ(ChooseDriver({all[0], all[1]}, {"/x/libtdsodbc.so"}).name, "FreeTDS");
}

TEST(DriverChoice, FallsBackOnALibraryThatNobodyRegistered) {
  const Driver driver = ChooseDriver({"SQLite3"}, {"/lib/odbc/libtdsodbc.so", "/other.so"});
  EXPECT_EQ(driver.kind, DriverKind::FreeTds);
  EXPECT_EQ(driver.name, "/lib/odbc/libtdsodbc.so");
}

TEST(DriverChoice, NamesThePackageWhenThereIsNone) {
  try {
    ChooseDriver({"SQLite3"}, {});
    FAIL();
  } catch (const ProviderError& error) {
    EXPECT_EQ(error.Number(), kProviderNotFound);
    EXPECT_THAT(error.Description(), HasSubstr("tdsodbc"));
  }
}

TEST(ServerName, IsTakenApartAsSqlServersClientsReadIt) {
  for (const auto& cells : test::ReadTable("platform/ado/odbc/server_names.txt")) {
    const auto [host, instance, port] = ParseServer(cells.at(0), std::stoi(cells.at(1)));
    EXPECT_EQ(host, cells.at(2)) << cells[0];
    EXPECT_EQ(instance, cells.at(3)) << cells[0];
    EXPECT_EQ(port, std::stoi(cells.at(4))) << cells[0];
  }
  EXPECT_EQ(ParseServer("  db1 ", 1444).host, "db1");
}

TEST(ConnectionString, LeavesNothingOfFreeTdsToAConfigurationFile) {
  EXPECT_EQ(
      DriverConnectionString(kFreeTds, Settings()),
      "DRIVER={FreeTDS};Server=db1;Port=1444;TDS_Version=7.4;ClientCharset=UTF-8;PacketSize=16383;"
      "Encryption=request;Language=us_english;APP=Dorvane;UID=sa;PWD=secret;Database=shop;");
}

TEST(ConnectionString, SaysWhatTheSettingsDemand) {
  using S = ConnectionSettings;
  const struct {
    const Driver& driver;
    void (*change)(S&);
    const char* part;
  } cases[] = {
      // FreeTDS takes an instance or a port, but not both.
      {kFreeTds, [](S& s) { s.server = "db1\\shop", s.port = 1433; },
       ";Server=db1\\shop;TDS_Version="},
      {kFreeTds, [](S& s) { s.server = "db1\\shop", s.port = 1500; }, ";Server=db1;Port=1500;"},
      {kFreeTds, [](S& s) { s.port = 0; }, ";Server=db1;Port=1433;"},
      // An empty login never becomes a trusted one.
      {kFreeTds, [](S& s) { s.user_id.clear(); }, ";UID= ;"},
      {kFreeTds, [](S& s) { s.encryption = Encryption::Required; }, ";Encryption=require;"},
      {kFreeTds, [](S& s) { s.encryption = Encryption::Verified; }, "};Servername=verified;"},
      {kMicrosoft, [](S& s) { s.encryption = Encryption::Verified; },
       "Encrypt=yes;TrustServerCertificate=no;HostNameInCertificate={db1};"}};
  for (const auto& [driver, change, part] : cases) {
    ConnectionSettings settings = Settings();
    change(settings);
    EXPECT_THAT(DriverConnectionString(driver, settings), HasSubstr(part));
  }
}

TEST(ConnectionString, AsksForATrustedConnectionWithoutALogin) {
  ConnectionSettings settings = Settings();
  settings.integrated_security = true;
  for (const Driver& driver : {kFreeTds, kMicrosoft}) {
    const std::string text = DriverConnectionString(driver, settings);
    EXPECT_THAT(text, HasSubstr("Trusted_Connection=yes;"));
    EXPECT_THAT(text, Not(testing::ContainsRegex("UID=|PWD=")));
  }
}

TEST(ConnectionString, QuotesWhatMicrosoftsDriversWouldMisread) {
  ConnectionSettings settings = Settings();
  settings.password = "a;b}c";
  EXPECT_EQ(DriverConnectionString(kMicrosoft, settings),
            "DRIVER={ODBC Driver 18 for SQL Server};Server={tcp:db1,1444};Encrypt=yes;"
            "TrustServerCertificate=yes;Language=us_english;APP=Dorvane;UID={sa};PWD={a;b}}c};"
            "Database={shop};");
}

TEST(ConnectionString, RefusesWhatADriverCannotBeTold) {
  ConnectionSettings settings = Settings();
  settings.encryption = Encryption::Verified;
  settings.ca_file = "/etc/own.pem";
  EXPECT_THROW(DriverConnectionString(kMicrosoft, settings), ProviderError);
  settings = Settings();
  settings.password = "a};b";
  EXPECT_THROW(DriverConnectionString(kFreeTds, settings), ProviderError);
  EXPECT_NO_THROW(DriverConnectionString(kMicrosoft, settings));
}

}  // namespace
}  // namespace dorvane::ado::odbc
