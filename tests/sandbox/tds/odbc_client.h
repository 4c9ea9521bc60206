#pragma once

#include <sql.h>
#include <sqlext.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sandbox::tds {

/// The real driver, against a server on loopback, as "sa" with the password "secret". Every failure
/// throws std::runtime_error.
class OdbcClient {
 public:
  explicit OdbcClient(std::uint16_t port, const std::string& settings = "TDS_Version=7.4");
  ~OdbcClient();
  OdbcClient(const OdbcClient&) = delete;
  OdbcClient& operator=(const OdbcClient&) = delete;

  using Rows = std::vector<std::vector<std::optional<std::string>>>;
  /// All rows of all results, as text.
  Rows Query(const std::string& sql);

  SQLHSTMT Statement() const { return statement_; }
  void Check(SQLRETURN result, SQLSMALLINT kind, SQLHANDLE handle) const;

 private:
  std::optional<std::string> Text(SQLUSMALLINT column);

  SQLHENV environment_ = SQL_NULL_HANDLE;
  SQLHDBC connection_ = SQL_NULL_HANDLE;
  SQLHSTMT statement_ = SQL_NULL_HANDLE;
};

}  // namespace sandbox::tds
