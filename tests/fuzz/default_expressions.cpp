// Column defaults as the catalogs of the servers give them.

#include "platform/ado/mysql/catalog.h"
#include "platform/ado/odbc/default_expression.h"
#include "tests/fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(dorvane::fuzz::Text(data, size));
  if (const auto value = dorvane::ado::odbc::DefaultValue(text)) {
    dorvane::fuzz::Demand(value->size() <= text.size() + sizeof "getdate()",
                          "a value is no longer than its expression");
  }
  for (const char* type : {"varchar", "bit", "int", "datetime", "binary"}) {
    for (const bool quoted : {false, true}) {
      dorvane::ado::mysql::DefaultValue(text, type, "DEFAULT_GENERATED", quoted);
      dorvane::ado::mysql::DefaultValue(text, type, "", quoted);
    }
  }
  return 0;
}
