#include "platform/ado/mysql/errors.h"

#include <mariadb/errmsg.h>

#include <algorithm>
#include <array>

#include "platform/ado/types.h"

namespace dorvane::ado::mysql {

namespace {

struct NumberClass {
  unsigned native_error;
  std::int32_t number;
};

// Errors whose SQLSTATE says nothing, or something else on some servers.
constexpr std::array kByNumber = {
    NumberClass{1044, hresult::kFail},             // no permission for the database
    NumberClass{1045, hresult::kFail},             // access denied
    NumberClass{1049, hresult::kFail},             // unknown database
    NumberClass{1205, hresult::kTimeout},          // waited too long for a lock
    NumberClass{1969, hresult::kTimeout},          // statement ran too long (MariaDB)
    NumberClass{3024, hresult::kTimeout},          // statement ran too long (MySQL)
    NumberClass{1264, hresult::kErrorsOccurred},   // out of range
    NumberClass{1265, hresult::kErrorsOccurred},   // data truncated
    NumberClass{1292, hresult::kErrorsOccurred},   // no such date or number
    NumberClass{1366, hresult::kErrorsOccurred},   // no number, or text outside the character set
    NumberClass{1406, hresult::kErrorsOccurred},   // data too long
    NumberClass{1411, hresult::kErrorsOccurred},   // no such value
    NumberClass{1416, hresult::kErrorsOccurred},   // no geometry
    NumberClass{3140, hresult::kErrorsOccurred},   // no JSON
    NumberClass{3988, hresult::kErrorsOccurred},   // text outside the character set (MySQL)
    NumberClass{1364, hresult::kErrorsInCommand},  // a column without a default was left out
    NumberClass{1526, hresult::kErrorsInCommand},  // no partition for the row
    NumberClass{3819, hresult::kErrorsInCommand},  // a check constraint (MySQL)
};

struct StateClass {
  std::string_view prefix;
  std::int32_t number;
};

constexpr std::array kByState = {
    StateClass{"22", hresult::kErrorsOccurred},   // data exceptions
    StateClass{"21", hresult::kErrorsInCommand},  // column count
    StateClass{"23", hresult::kErrorsInCommand},  // constraints
    StateClass{"42", hresult::kErrorsInCommand},  // syntax, names, permissions
    StateClass{"44", hresult::kErrorsInCommand},  // check option of a view
    StateClass{"45", hresult::kErrorsInCommand},  // refused by a trigger
};

}  // namespace

std::int32_t HresultOf(unsigned native_error, std::string_view sql_state) {
  const auto number = std::ranges::find(kByNumber, native_error, &NumberClass::native_error);
  if (number != kByNumber.end()) return number->number;
  const auto state = std::ranges::find(kByState, sql_state.substr(0, 2), &StateClass::prefix);
  return state != kByState.end() ? state->number : hresult::kFail;
}

ProviderError MakeError(unsigned native_error, std::string sql_state,
                        const std::string& description) {
  const std::int32_t number = HresultOf(native_error, sql_state);
  return {number,
          kSource,
          description,
          {{.number = number,
            .native_error = static_cast<std::int32_t>(native_error),
            .description = description,
            .sql_state = std::move(sql_state)}}};
}

ProviderError MalformedPacket(const std::string& what) {
  return MakeError(CR_MALFORMED_PACKET, "HY000", "Malformed packet: " + what);
}

void ThrowError(MYSQL* client) {
  throw MakeError(mysql_errno(client), mysql_sqlstate(client), mysql_error(client));
}

void ThrowError(MYSQL_STMT* statement, MYSQL* client) {
  if (mysql_stmt_errno(statement) == 0) ThrowError(client);
  throw MakeError(mysql_stmt_errno(statement), mysql_stmt_sqlstate(statement),
                  mysql_stmt_error(statement));
}

}  // namespace dorvane::ado::mysql
