#include "tests/sandbox/tds/odbc_client.h"

#include <array>
#include <stdexcept>

namespace sandbox::tds {

namespace {

constexpr char kDriver[] = "/usr/lib/x86_64-linux-gnu/odbc/libtdsodbc.so";

SQLCHAR* Chars(const std::string& text) {
  return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.c_str()));
}

}  // namespace

void OdbcClient::Check(SQLRETURN result, SQLSMALLINT kind, SQLHANDLE handle) const {
  if (SQL_SUCCEEDED(result) || result == SQL_NO_DATA) return;
  std::array<SQLCHAR, 1024> message{};
  SQLGetDiagRec(kind, handle, 1, nullptr, nullptr, message.data(), message.size(), nullptr);
  throw std::runtime_error(reinterpret_cast<char*>(message.data()));
}

OdbcClient::OdbcClient(std::uint16_t port, const std::string& settings) {
  SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_);
  SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, reinterpret_cast<void*>(SQL_OV_ODBC3), 0);
  SQLAllocHandle(SQL_HANDLE_DBC, environment_, &connection_);
  std::string text = std::string("DRIVER=") + kDriver +
                     ";Server=127.0.0.1;Port=" + std::to_string(port) +
                     ";ClientCharset=UTF-8;UID=sa;PWD=secret;" + settings;
  try {
    Check(SQLDriverConnect(connection_, nullptr, Chars(text), SQL_NTS, nullptr, 0, nullptr,
                           SQL_DRIVER_NOPROMPT),
          SQL_HANDLE_DBC, connection_);
  } catch (...) {
    SQLFreeHandle(SQL_HANDLE_DBC, connection_);
    SQLFreeHandle(SQL_HANDLE_ENV, environment_);
    throw;
  }
  SQLAllocHandle(SQL_HANDLE_STMT, connection_, &statement_);
}

OdbcClient::~OdbcClient() {
  SQLFreeHandle(SQL_HANDLE_STMT, statement_);
  SQLDisconnect(connection_);
  SQLFreeHandle(SQL_HANDLE_DBC, connection_);
  SQLFreeHandle(SQL_HANDLE_ENV, environment_);
}

std::optional<std::string> OdbcClient::Text(SQLUSMALLINT column) {
  std::string text;
  std::vector<char> block(65536);
  const auto room = static_cast<SQLLEN>(block.size());
  SQLLEN left = room;
  // The length tells: the driver calls a variant's value cut even when it came whole.
  while (left >= room || left == SQL_NO_TOTAL) {
    SQLRETURN result = SQLGetData(statement_, column, SQL_C_CHAR, block.data(), room, &left);
    if (result == SQL_NO_DATA) break;
    Check(result, SQL_HANDLE_STMT, statement_);
    if (left == SQL_NULL_DATA) return std::nullopt;
    text += block.data();
  }
  return text;
}

OdbcClient::Rows OdbcClient::Query(const std::string& sql) {
  Rows rows;
  SQLFreeStmt(statement_, SQL_CLOSE);
  SQLRETURN result = SQLExecDirect(statement_, Chars(sql), SQL_NTS);
  while (result != SQL_NO_DATA) {
    Check(result, SQL_HANDLE_STMT, statement_);
    SQLSMALLINT columns = 0;
    SQLNumResultCols(statement_, &columns);
    while (columns > 0) {
      result = SQLFetch(statement_);
      if (result == SQL_NO_DATA) break;
      Check(result, SQL_HANDLE_STMT, statement_);
      auto& row = rows.emplace_back();
      for (SQLSMALLINT column = 1; column <= columns; ++column) {
        row.push_back(Text(static_cast<SQLUSMALLINT>(column)));
      }
    }
    result = SQLMoreResults(statement_);
  }
  SQLFreeStmt(statement_, SQL_CLOSE);
  return rows;
}

}  // namespace sandbox::tds
