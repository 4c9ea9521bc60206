#include "sandbox/values/errors.h"

namespace sandbox {

SqlError MakeError(const MessageText& message, fmt::format_args arguments) {
  SqlError error;
  error.messages.push_back({message.number, message.state, message.severity,
                            fmt::vformat(message.text, arguments), "", 0});
  error.ends_batch = message.ends != Ends::Statement;
  error.rolls_back = message.ends == Ends::Transaction;
  return error;
}

}  // namespace sandbox
