// "config", the settings of the last run.

#include "job/last_settings.h"

#include <fstream>
#include <string>

#include "tests/fuzz/fuzz.h"
#include "tests/support/temp_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const dorvane::test::TempFolder folder;
  std::ofstream(folder / "config", std::ios::binary) << dorvane::fuzz::Text(data, size);
  int reports = 0;
  const dorvane::LastSettings settings =
      dorvane::LoadLastSettings(folder.Path(), [&](std::string_view) { ++reports; });
  dorvane::fuzz::Demand(reports <= 1, "a failure is told once");
  settings.PlainPassword(dorvane::LastSettings::kSrcPassword);
  settings.PlainPassword(dorvane::LastSettings::kDestPassword);
  return 0;
}
