// What a client sends to the practice server: its first byte says as which message the others are
// read.

#include "sandbox/tds/login.h"
#include "sandbox/tds/rpc_request.h"
#include "tests/fuzz/fuzz.h"

namespace {

using namespace sandbox::tds;

void Parse(std::uint8_t kind, std::string_view bytes) {
  ByteReader reader(bytes);
  switch (kind % 3) {
    case 0:
      ParsePreLogin(bytes);
      return;
    case 1:
      ParseLogin(bytes);
      return;
    default:
      ReadRpcRequests(reader);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  try {
    Parse(data[0], dorvane::fuzz::Text(data + 1, size - 1));
  } catch (const ProtocolError&) {
    // ends the connection
  }
  return 0;
}
