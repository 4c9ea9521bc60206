#pragma once

#include <fmt/format.h>

#include <string>
#include <vector>

#include "sandbox/values/error_table.h"
#include "sandbox/values/server_message.h"

namespace sandbox {

/// A failure on its way to the client. What it ends: the statement, or the batch with it.
struct SqlError {
  std::vector<ServerMessage> messages;
  bool ends_batch = false;
  bool rolls_back = false;  // the open transaction goes too
};

SqlError MakeError(const MessageText& message, fmt::format_args arguments);

/// The number of an error whose text takes `count` arguments; any other does not compile.
template <std::size_t count>
class ErrorNumber {
 public:
  consteval ErrorNumber(int number) : message_(*FindMessage(number)) {
    std::size_t places = 0;
    for (std::size_t at = 0; (at = message_.text.find("{}", at)) != std::string_view::npos; ++at) {
      ++places;
    }
    if (places != count) throw "the error's text takes another number of arguments";
  }
  const MessageText& Message() const { return message_; }

 private:
  const MessageText& message_;
};

/// An error with the server's severity, state and text for `number`; `arguments` fill the text.
template <typename... Arguments>
SqlError Error(ErrorNumber<sizeof...(Arguments)> number, const Arguments&... arguments) {
  return MakeError(number.Message(), fmt::make_format_args(arguments...));
}

template <typename... Arguments>
[[noreturn]] void Raise(ErrorNumber<sizeof...(Arguments)> number, const Arguments&... arguments) {
  throw Error(number, arguments...);
}

/// The error with another one that the server lets follow.
inline SqlError Followed(SqlError error, ErrorNumber<0> next) {
  error.messages.push_back(Error(next).messages.front());
  return error;
}

/// Raises an error that the server follows with 1750, "Could not create constraint or index".
template <typename... Arguments>
[[noreturn]] void RaiseForConstraint(ErrorNumber<sizeof...(Arguments)> number,
                                     const Arguments&... arguments) {
  throw Followed(Error(number, arguments...), 1750);
}

}  // namespace sandbox
