#include "platform/ado/odbc/connection_string.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/ado/odbc/driver.h"
#include "platform/ado/types.h"

namespace dorvane::ado::odbc {

namespace {

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
    EXPECT_NE(error.Description().find("tdsodbc"), std::string::npos);
  }
}

struct ServerCase {
  std::string server;
  int port;
  ServerAddress expected;
};

TEST(ServerName, IsTakenApartAsSqlServersClientsReadIt) {
  const ServerCase cases[] = {
      {"db1", 1433, {"db1", "", 1433}},
      {"db1", 0, {"db1", "", 0}},
      {"  db1 ", 1444, {"db1", "", 1444}},
      {"db1,5000", 1433, {"db1", "", 5000}},
      {"tcp:db1, 5000", 0, {"db1", "", 5000}},
      {"db1\\shop", 0, {"db1", "shop", 0}},
      {"db1\\shop", 1433, {"db1", "shop", 0}},
      {"db1\\shop", 1500, {"db1", "shop", 1500}},
      {"db1\\shop,1433", 7, {"db1", "shop", 1433}},
      {".", 1433, {"localhost", "", 1433}},
      {"(local)\\x", 0, {"localhost", "x", 0}},
      {"", 0, {"localhost", "", 0}},
      {"::1", 1433, {"::1", "", 1433}},
      {"[::1]", 1433, {"::1", "", 1433}},
      {"db1,port", 1444, {"db1", "", 1444}},
  };
  for (const ServerCase& c : cases) {
    const ServerAddress address = ParseServer(c.server, c.port);
    EXPECT_EQ(address.host, c.expected.host) << c.server;
    EXPECT_EQ(address.instance, c.expected.instance) << c.server;
    EXPECT_EQ(address.port, c.expected.port) << c.server;
  }
}

TEST(ConnectionString, LeavesNothingOfFreeTdsToAConfigurationFile) {
  EXPECT_EQ(
      DriverConnectionString(kFreeTds, Settings()),
      "DRIVER={FreeTDS};Server=db1;Port=1444;TDS_Version=7.4;ClientCharset=UTF-8;PacketSize=16383;"
      "Encryption=request;Language=us_english;APP=Dorvane;UID=sa;PWD=secret;Database=shop;");
}

TEST(ConnectionString, NamesAnInstanceOrAPortToFreeTdsButNotBoth) {
  ConnectionSettings settings = Settings();
  settings.server = "db1\\shop";
  settings.port = 1433;
  EXPECT_NE(DriverConnectionString(kFreeTds, settings).find(";Server=db1\\shop;TDS_Version="),
            std::string::npos);
  settings.port = 1500;
  EXPECT_NE(DriverConnectionString(kFreeTds, settings).find(";Server=db1;Port=1500;"),
            std::string::npos);
  settings.server = "db1";
  settings.port = 0;
  EXPECT_NE(DriverConnectionString(kFreeTds, settings).find(";Server=db1;Port=1433;"),
            std::string::npos);
}

TEST(ConnectionString, AsksForATrustedConnectionWithoutALogin) {
  ConnectionSettings settings = Settings();
  settings.integrated_security = true;
  for (const Driver& driver : {kFreeTds, kMicrosoft}) {
    const std::string text = DriverConnectionString(driver, settings);
    EXPECT_NE(text.find("Trusted_Connection=yes;"), std::string::npos);
    EXPECT_EQ(text.find("UID="), std::string::npos);
    EXPECT_EQ(text.find("PWD="), std::string::npos);
  }
}

TEST(ConnectionString, AnEmptyLoginNeverBecomesATrustedOne) {
  ConnectionSettings settings = Settings();
  settings.user_id.clear();
  EXPECT_NE(DriverConnectionString(kFreeTds, settings).find("UID= ;"), std::string::npos);
}

TEST(ConnectionString, QuotesWhatMicrosoftsDriversWouldMisread) {
  ConnectionSettings settings = Settings();
  settings.password = "a;b}c";
  EXPECT_EQ(DriverConnectionString(kMicrosoft, settings),
            "DRIVER={ODBC Driver 18 for SQL Server};Server={tcp:db1,1444};Encrypt=yes;"
            "TrustServerCertificate=yes;Language=us_english;APP=Dorvane;UID={sa};PWD={a;b}}c};"
            "Database={shop};");
}

TEST(ConnectionString, DemandsAndVerifiesTls) {
  ConnectionSettings settings = Settings();
  settings.encryption = Encryption::Required;
  EXPECT_NE(DriverConnectionString(kFreeTds, settings).find(";Encryption=require;"),
            std::string::npos);
  settings.encryption = Encryption::Verified;
  EXPECT_NE(DriverConnectionString(kFreeTds, settings).find("};Servername=verified;"),
            std::string::npos);
  EXPECT_NE(DriverConnectionString(kMicrosoft, settings)
                .find("Encrypt=yes;TrustServerCertificate=no;HostNameInCertificate={db1};"),
            std::string::npos);
  settings.ca_file = "/etc/own.pem";
  EXPECT_THROW(DriverConnectionString(kMicrosoft, settings), ProviderError);
}

TEST(ConnectionString, RefusesWhatFreeTdsCannotBeTold) {
  ConnectionSettings settings = Settings();
  settings.password = "a};b";
  EXPECT_THROW(DriverConnectionString(kFreeTds, settings), ProviderError);
  EXPECT_NO_THROW(DriverConnectionString(kMicrosoft, settings));
}

}  // namespace
}  // namespace dorvane::ado::odbc
