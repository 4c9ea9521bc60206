// The texts inside a help file: its table of contents, its index and its pages.

#include "platform/help/html_text.h"
#include "platform/help/site_map.h"
#include "tests/fuzz/fuzz.h"

namespace {

std::size_t Entries(const std::vector<dorvane::help::SiteMapEntry>& entries) {
  std::size_t count = entries.size();
  for (const auto& entry : entries) count += Entries(entry.children);
  return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = dorvane::fuzz::Text(data, size);
  dorvane::fuzz::Demand(Entries(dorvane::help::ReadSiteMap(text)) <= text.size(),
                        "every entry stands in the text");
  dorvane::help::PlainText(text);
  dorvane::help::TitleOf(text);
  dorvane::help::DecodeEntities(text);
  return 0;
}
