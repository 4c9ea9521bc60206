#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/help/chm_file.h"
#include "platform/help/site_map.h"

namespace dorvane::help {

struct Topic {
  std::string path;  // "/name.html"
  std::string title;
};

/// A compiled help file as a reader uses it. All texts are UTF-8.
class HelpBook {
 public:
  /// Throws RunTimeError: 53 no such file, 57 a file that is no compiled help.
  explicit HelpBook(const std::filesystem::path& path);

  const std::string& DefaultTopic() const { return default_topic_; }
  const std::vector<SiteMapEntry>& Contents() const { return contents_; }
  const std::vector<SiteMapEntry>& Index() const { return index_; }

  /// The topic of a help context number.
  std::optional<std::string> TopicOfContext(std::int32_t context) const;

  /// The bytes of a file inside; a path without "/" in front counts from the top.
  std::optional<std::string> Read(std::string_view path) const;

  /// The topics that hold every word of the query in any case, best first: more hits, and hits in
  /// the title, come before. An empty query finds nothing.
  std::vector<Topic> Search(std::string_view query) const;

 private:
  void ReadSystem();
  void ReadContexts();

  ChmFile file_;
  std::string default_topic_;
  std::vector<SiteMapEntry> contents_;
  std::vector<SiteMapEntry> index_;
  std::map<std::uint32_t, std::string> contexts_;
};

}  // namespace dorvane::help
