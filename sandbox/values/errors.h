#pragma once

#include <fmt/format.h>

#include <string>
#include <vector>

#include "sandbox/values/server_message.h"

namespace sandbox {

/// A failure on its way to the client. What it ends: the statement, or the batch with it.
struct SqlError {
  std::vector<ServerMessage> messages;
  bool ends_batch = false;
  bool rolls_back = false;  // the open transaction goes too
};

/// An error with the server's severity, state and text for `number`; `arguments` fill the text.
SqlError MakeError(int number, fmt::format_args arguments);

template <class... Arguments>
SqlError Error(int number, const Arguments&... arguments) {
  return MakeError(number, fmt::make_format_args(arguments...));
}

template <class... Arguments>
[[noreturn]] void Raise(int number, const Arguments&... arguments) {
  throw Error(number, arguments...);
}

/// Raises an error that the server follows with 1750, "Could not create constraint or index".
template <class... Arguments>
[[noreturn]] void RaiseForConstraint(int number, const Arguments&... arguments) {
  SqlError error = Error(number, arguments...);
  error.messages.push_back(Error(1750).messages.front());
  throw error;
}

}  // namespace sandbox
