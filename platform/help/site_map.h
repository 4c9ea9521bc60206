#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace dorvane::help {

/// An entry of a table of contents or an index.
struct SiteMapEntry {
  std::string name;
  std::string topic;  // a path inside the help file, maybe with "#anchor"; empty for a heading
  std::vector<SiteMapEntry> children;
};

/// The entries of a .hhc or .hhk text: nested lists of "text/sitemap" objects. Anything else in the
/// text is passed over.
std::vector<SiteMapEntry> ReadSiteMap(std::string_view html);

}  // namespace dorvane::help
