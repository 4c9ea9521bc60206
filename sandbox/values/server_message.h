#pragma once

#include <cstdint>
#include <string>

namespace sandbox {

/// A message of the server: errors have class (severity) above 10.
struct ServerMessage {
  std::int32_t number = 0;
  int state = 1;
  int severity = 16;
  std::string text;
  std::string procedure;
  int line = 1;
};

}  // namespace sandbox
