#include "platform/ado/odbc/diagnostics.h"

#include <gtest/gtest.h>

#include "platform/ado/types.h"

namespace dorvane::ado::odbc {

namespace {

TEST(StatementFailure, HasTheNumberOfItsClass) {
  using namespace hresult;
  const struct {
    const char* state;
    std::int32_t native, number;
  } cases[] = {{"23000", 2627, kIntegrityViolation},
               {"42000", 102, kErrorsInCommand},
               {"42S02", 208, kErrorsInCommand},
               {"21S01", 213, kErrorsInCommand},
               {"22007", 241, kErrorsOccurred},
               {"22001", 8152, kDataOverflow},
               {"HYT00", 0, kTimeout},
               {"08S01", 20006, kFail},
               {"40001", 1205, kFail},
               // by the server's number where the driver gives no class
               {"42000", 2628, kDataOverflow},
               {"42000", 547, kIntegrityViolation},
               {"42000", 8114, kErrorsOccurred},
               {"HY019", 220, kErrorsOccurred}};
  for (const auto& [state, native, number] : cases) {
    EXPECT_EQ(StatementError({{state, native, "text"}}).Number(), number) << state << native;
  }
}

TEST(StatementFailure, ListsErrorsInTheServersOrderWithoutItsRemarks) {
  const ProviderError error = StatementError({{"01000", 5701, "Changed database context."},
                                              {"42000", 1801, "Database 'x' already exists."},
                                              {"42000", 1802, "CREATE DATABASE failed."},
                                              {"01000", 3621, "The statement was terminated."}});
  ASSERT_EQ(error.Entries().size(), 2U);
  EXPECT_EQ(error.Entries()[0].native_error, 1801);
  EXPECT_EQ(error.Entries()[1].native_error, 1802);
  EXPECT_EQ(error.Description(), "Database 'x' already exists.");
}

TEST(StatementFailure, IsNeverWithoutAnEntry) {
  EXPECT_EQ(StatementError({}).Entries().size(), 1U);
  EXPECT_EQ(StatementError({{"01000", 1, "only a remark"}}).Entries().size(), 1U);
}

TEST(LogonFailure, IsTheServersOwnErrorElseWhatKeepsItAway) {
  constexpr int kNotFound = 17, kTlsFailure = 18, kUntrusted = 18452;
  const ConnectionSettings plain;
  const ConnectionSettings trusted{.integrated_security = true};
  const ConnectionSettings verified{.encryption = Encryption::Verified};
  const Diagnostics unavailable{{"08S01", 20009, "Unavailable"}, {"08001", 0, "Unable"}};
  const Diagnostics failed{{"08001", 0, "Unable"}, {"01000", 20002, "Failed"}};
  const Diagnostics ended{{"08001", 0, "Unable"}, {"01000", 20017, "End"}, {"01000", 20002, "F"}};
  const Diagnostics no_name{{"08001", 11001, "Name or service not known"}};
  const struct {
    ConnectionSettings settings;
    Diagnostics records;
    int number;
  } cases[] = {
      {plain, unavailable, kNotFound},
      {plain, {{"08001", 0, "Unable"}, {"01000", 20013, "Unknown host"}}, kNotFound},
      {plain, ended, kNotFound},
      {plain, {{"HYT00", 0, "Timeout expired"}, {"08001", 0, "Unable"}}, kNotFound},
      {plain, no_name, kNotFound},
      {plain, failed, kNotFound},
      {plain, {{"42000", 18456, "Login failed"}, {"08001", 0, "Unable"}}, 18456},
      {plain, {{"28000", 18456, "Login failed"}}, 18456},
      {plain, {{"08001", 0, "Unable"}, {"42000", 18470, "Account disabled"}}, 18470},
      {plain, {{"42000", 911, "No such database"}, {"08001", 0, "Unable"}}, 911},
      {trusted, failed, kUntrusted},
      {trusted, {{"42000", kUntrusted, "Untrusted domain"}, {"08001", 0, "Unable"}}, kUntrusted},
      {trusted, unavailable, kNotFound},
      {verified, failed, kTlsFailure},
      {verified, {{"08001", -1, "SSL Provider: certificate verify failed"}}, kTlsFailure},
      {verified, no_name, kNotFound},
      {verified, ended, kNotFound}};
  for (const auto& [settings, records, number] : cases) {
    const ProviderError error = LogonError(records, settings);
    ASSERT_GE(error.Entries().size(), 2U);
    EXPECT_EQ(error.Entries()[0].native_error, 0);
    EXPECT_EQ(error.Entries()[1].native_error, number)
        << settings.integrated_security << static_cast<int>(settings.encryption);
    EXPECT_EQ(error.Description(), error.Entries()[1].description);
  }
}

TEST(LogonFailure, PutsAMissingDatabaseBeforeTheRefusedLogin) {
  const ProviderError error = LogonError({{"42000", 18456, "Login failed"},
                                          {"42000", 4060, "Cannot open database"},
                                          {"08001", 0, "Unable"}},
                                         {});
  ASSERT_EQ(error.Entries().size(), 3U);
  EXPECT_EQ(error.Entries()[1].native_error, 4060);
  EXPECT_EQ(error.Entries()[2].native_error, 18456);
}

TEST(LogonFailure, OfADriverThatCannotBeLoadedIsAMissingProvider) {
  EXPECT_EQ(LogonError({{"01000", 0, "Can't open lib '/x.so' : file not found"}}, {}).Number(),
            kProviderNotFound);
  EXPECT_EQ(LogonError({{"IM002", 0, "Data source name not found"}}, {}).Number(),
            kProviderNotFound);
}

}  // namespace
}  // namespace dorvane::ado::odbc
