// The text of SHOW CREATE TABLE.

#include <string>

#include "mysql/to_mssql/foreign_key_text.h"
#include "mysql/util.h"
#include "tests/fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(dorvane::fuzz::Text(data, size));
  for (const auto& key : dorvane::to_mssql::ReadForeignKeys(text)) {
    dorvane::fuzz::Demand(key.name.size() + key.columns.size() + key.referenced.size() <= size,
                          "a key stands in the text");
    dorvane::to_mssql::ChangeNames(key.referenced, [](std::string name) { return name; });
  }
  dorvane::to_mssql::ChangeNames(text, [](std::string name) { return name + name; });
  std::string dashed = text;
  dorvane::fuzz::Demand(dorvane::Util().ReplaceDashes(dashed).size() == size,
                        "brackets take the place of backquotes");
  return 0;
}
