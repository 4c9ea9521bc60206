#include "platform/ado/odbc/diagnostics.h"

#include <gtest/gtest.h>

#include "platform/ado/types.h"

namespace dorvane::ado::odbc {

namespace {

std::int32_t StatementNumber(const std::string& state, std::int32_t native) {
  return StatementError({{state, native, "text"}}).Number();
}

TEST(StatementFailure, HasTheNumberOfItsClass) {
  EXPECT_EQ(StatementNumber("23000", 2627), hresult::kIntegrityViolation);
  EXPECT_EQ(StatementNumber("42000", 102), hresult::kErrorsInCommand);
  EXPECT_EQ(StatementNumber("42S02", 208), hresult::kErrorsInCommand);
  EXPECT_EQ(StatementNumber("21S01", 213), hresult::kErrorsInCommand);
  EXPECT_EQ(StatementNumber("22007", 241), hresult::kErrorsOccurred);
  EXPECT_EQ(StatementNumber("22001", 8152), hresult::kDataOverflow);
  EXPECT_EQ(StatementNumber("HYT00", 0), hresult::kTimeout);
  EXPECT_EQ(StatementNumber("08S01", 20006), hresult::kFail);
  EXPECT_EQ(StatementNumber("40001", 1205), hresult::kFail);
}

TEST(StatementFailure, IsKnownByTheServersNumberWhereTheDriverGivesNoClass) {
  EXPECT_EQ(StatementNumber("42000", 2628), hresult::kDataOverflow);
  EXPECT_EQ(StatementNumber("42000", 547), hresult::kIntegrityViolation);
  EXPECT_EQ(StatementNumber("42000", 8114), hresult::kErrorsOccurred);
  EXPECT_EQ(StatementNumber("HY019", 220), hresult::kErrorsOccurred);
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

/// The native error that a failed logon is told apart by: the one of the second entry.
std::int32_t LogonNumber(const Diagnostics& records, const ConnectionSettings& settings = {}) {
  const ProviderError error = LogonError(records, settings);
  EXPECT_GE(error.Entries().size(), 2U);
  EXPECT_EQ(error.Entries()[0].native_error, 0);
  EXPECT_EQ(error.Description(), error.Entries()[1].description);
  return error.Entries()[1].native_error;
}

TEST(LogonFailure, IsServerNotFoundWhateverKeepsTheServerAway) {
  EXPECT_EQ(LogonNumber({{"08S01", 20009, "Unavailable"}, {"08001", 0, "Unable"}}), 17);
  EXPECT_EQ(LogonNumber({{"08001", 0, "Unable"}, {"01000", 20013, "Unknown host"}}), 17);
  EXPECT_EQ(LogonNumber({{"08001", 0, "Unable"}, {"01000", 20017, "End"}, {"01000", 20002, "F"}}),
            17);
  EXPECT_EQ(LogonNumber({{"HYT00", 0, "Timeout expired"}, {"08001", 0, "Unable"}}), 17);
  EXPECT_EQ(LogonNumber({{"08001", 11001, "Name or service not known"}}), 17);
}

TEST(LogonFailure, GivesTheServersOwnErrorWhereverItStands) {
  EXPECT_EQ(LogonNumber({{"42000", 18456, "Login failed"}, {"08001", 0, "Unable"}}), 18456);
  EXPECT_EQ(LogonNumber({{"28000", 18456, "Login failed"}}), 18456);
  EXPECT_EQ(LogonNumber({{"08001", 0, "Unable"}, {"42000", 18470, "Account disabled"}}), 18470);
  EXPECT_EQ(LogonNumber({{"42000", 911, "No such database"}, {"08001", 0, "Unable"}}), 911);
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

TEST(LogonFailure, OfATrustedConnectionIsAMissingTicketUnlessTheServerWasNotReached) {
  const ConnectionSettings trusted{.integrated_security = true};
  EXPECT_EQ(LogonNumber({{"08001", 0, "Unable"}, {"01000", 20002, "Failed"}}, trusted), 18452);
  EXPECT_EQ(LogonNumber({{"42000", 18452, "Untrusted domain"}, {"08001", 0, "Unable"}}, trusted),
            18452);
  EXPECT_EQ(LogonNumber({{"08S01", 20009, "Unavailable"}, {"08001", 0, "Unable"}}, trusted), 17);
  EXPECT_EQ(LogonNumber({{"08001", 0, "Unable"}, {"01000", 20002, "Failed"}}), 17);
}

TEST(LogonFailure, OfADemandForTlsIsItsOwnUnlessTheServerWasNotReached) {
  const ConnectionSettings verified{.encryption = Encryption::Verified};
  EXPECT_EQ(LogonNumber({{"08001", 0, "Unable"}, {"01000", 20002, "Failed"}}, verified), 18);
  EXPECT_EQ(LogonNumber({{"08001", -1, "SSL Provider: certificate verify failed"}}, verified), 18);
  EXPECT_EQ(LogonNumber({{"08001", 11001, "Name or service not known"}}, verified), 17);
  EXPECT_EQ(LogonNumber({{"08001", 0, "Unable"}, {"01000", 20017, "End"}, {"01000", 20002, "F"}},
                        verified),
            17);
}

TEST(LogonFailure, OfADriverThatCannotBeLoadedIsAMissingProvider) {
  EXPECT_EQ(LogonError({{"01000", 0, "Can't open lib '/x.so' : file not found"}}, {}).Number(),
            kProviderNotFound);
  EXPECT_EQ(LogonError({{"IM002", 0, "Data source name not found"}}, {}).Number(),
            kProviderNotFound);
}

}  // namespace
}  // namespace dorvane::ado::odbc
