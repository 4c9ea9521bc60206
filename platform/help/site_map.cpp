#include "platform/help/site_map.h"

#include <algorithm>
#include <optional>

#include "platform/help/html_text.h"
#include "platform/text/ascii.h"

namespace dorvane::help {

namespace {

/// The next tag without its brackets; `html` goes on behind it.
std::optional<std::string_view> TakeTag(std::string_view& html) {
  const auto begin = html.find('<');
  const auto end = html.find('>', begin);
  if (begin == std::string_view::npos || end == std::string_view::npos) return std::nullopt;
  const std::string_view tag = html.substr(begin + 1, end - begin - 1);
  html.remove_prefix(end + 1);
  return tag;
}

/// The value of an attribute between double quotes.
std::string Attribute(std::string_view tag, std::string_view name) {
  const std::string opening = std::string(name) + "=\"";
  const auto begin = text::ToLower(tag).find(opening);
  if (begin == std::string::npos) return "";
  const auto from = begin + opening.size();
  const auto end = tag.find('"', from);
  return end == std::string_view::npos ? "" : DecodeEntities(tag.substr(from, end - from));
}

void ReadParameter(std::string_view tag, SiteMapEntry& entry) {
  const std::string name = text::ToLower(Attribute(tag, "name"));
  // An index entry names its topics too; its own name is the first.
  if (name == "name" && entry.name.empty()) entry.name = Attribute(tag, "value");
  if (name == "local") entry.topic = Attribute(tag, "value");
}

class Reader {
 public:
  explicit Reader(std::string_view html) : html_(html) {}

  std::vector<SiteMapEntry> ReadList(int depth) {
    constexpr int kDeepest = 32;
    std::vector<SiteMapEntry> entries;
    while (const auto tag = TakeTag(html_)) {
      const std::string lower = text::ToLower(*tag);
      if (lower.starts_with("object") && lower.find("text/sitemap") != std::string::npos) {
        entries.push_back(ReadObject());
      } else if (lower == "ul" && depth < kDeepest) {
        auto list = ReadList(depth + 1);
        auto& parent = entries.empty() ? entries : entries.back().children;
        std::ranges::move(list, std::back_inserter(parent));
      } else if (lower == "/ul") {
        break;
      }
    }
    return entries;
  }

 private:
  SiteMapEntry ReadObject() {
    SiteMapEntry entry;
    while (const auto tag = TakeTag(html_)) {
      const std::string lower = text::ToLower(*tag);
      if (lower.starts_with("/object")) break;
      if (lower.starts_with("param")) ReadParameter(*tag, entry);
    }
    return entry;
  }

  std::string_view html_;
};

}  // namespace

std::vector<SiteMapEntry> ReadSiteMap(std::string_view html) {
  return Reader(html).ReadList(0);
}

}  // namespace dorvane::help
