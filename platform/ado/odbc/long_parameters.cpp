#include "platform/ado/odbc/long_parameters.h"

#include <sql.h>
#include <sqlext.h>

#include <string>

#include "platform/ado/odbc/utf16.h"

namespace dorvane::ado::odbc {

namespace {

constexpr std::size_t kPieceBytes = 64 * 1024;

/// The beginning of a UTF-8 text that is at most a piece long and ends with a character.
std::string_view FirstPiece(std::string_view text) {
  if (text.size() <= kPieceBytes) return text;
  std::size_t end = kPieceBytes;
  while (end > kPieceBytes - 3 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  return text.substr(0, end);
}

SQLRETURN PutText(const Statement& statement, std::string_view text) {
  SQLRETURN result = SQL_SUCCESS;
  while (!text.empty() && SQL_SUCCEEDED(result)) {
    const std::string_view piece = FirstPiece(text);
    std::u16string wide = ToUtf16(piece);
    result = SQLPutData(statement.Get(), wide.data(),
                        static_cast<SQLLEN>(wide.size() * sizeof(char16_t)));
    text.remove_prefix(piece.size());
  }
  return result;
}

SQLRETURN PutBytes(const Statement& statement, std::string_view bytes) {
  SQLRETURN result = SQL_SUCCESS;
  while (!bytes.empty() && SQL_SUCCEEDED(result)) {
    const std::string_view piece = bytes.substr(0, kPieceBytes);
    result = SQLPutData(statement.Get(), const_cast<char*>(piece.data()),
                        static_cast<SQLLEN>(piece.size()));
    bytes.remove_prefix(piece.size());
  }
  return result;
}

SQLRETURN Put(const Statement& statement, const Value& value) {
  const auto* text = std::get_if<std::string_view>(&value);
  return text != nullptr ? PutText(statement, *text) : PutBytes(statement, BytesOf(value));
}

}  // namespace

SQLRETURN ExecuteInPieces(const Statement& statement, std::string_view sql,
                          std::span<const Value> parameters) {
  SQLLEN in_pieces = SQL_DATA_AT_EXEC;
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    const bool is_text = std::holds_alternative<std::string_view>(parameters[i]);
    const SQLRETURN bound = SQLBindParameter(statement.Get(), static_cast<SQLUSMALLINT>(i + 1),
                                             SQL_PARAM_INPUT, is_text ? SQL_C_WCHAR : SQL_C_BINARY,
                                             is_text ? SQL_WLONGVARCHAR : SQL_LONGVARBINARY, 0, 0,
                                             const_cast<Value*>(&parameters[i]), 0, &in_pieces);
    if (!SQL_SUCCEEDED(bound)) return bound;
  }
  std::u16string text = ToUtf16(sql);
  SQLRETURN result = SQLExecDirectW(statement.Get(), reinterpret_cast<SQLWCHAR*>(text.data()),
                                    static_cast<SQLINTEGER>(text.size()));
  while (result == SQL_NEED_DATA) {
    SQLPOINTER wanted = nullptr;
    result = SQLParamData(statement.Get(), &wanted);
    if (result != SQL_NEED_DATA) break;
    const SQLRETURN put = Put(statement, *static_cast<const Value*>(wanted));
    if (!SQL_SUCCEEDED(put)) return put;
  }
  return result;
}

}  // namespace dorvane::ado::odbc
