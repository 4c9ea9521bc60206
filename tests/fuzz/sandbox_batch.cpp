// T-SQL that a client sends to the practice server.

#include "sandbox/parser/parser.h"
#include "sandbox/values/errors.h"
#include "tests/fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    sandbox::Parser(dorvane::fuzz::Text(data, size)).ParseBatch();
  } catch (const sandbox::SqlError&) {
    // told to the client
  }
  return 0;
}
