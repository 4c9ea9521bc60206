#include "platform/help/help_book.h"

#include <algorithm>
#include <sstream>

#include "platform/help/html_text.h"
#include "platform/text/ascii.h"

namespace dorvane::help {

namespace {

/// A little-endian number; 0 behind the end.
std::uint32_t LittleEndian(std::string_view bytes, std::size_t offset, std::size_t size) {
  std::uint32_t number = 0;
  for (std::size_t i = size; i > 0; --i) {
    const std::size_t place = offset + i - 1;
    if (place < bytes.size()) number = number << 8 | static_cast<unsigned char>(bytes[place]);
  }
  return number;
}

/// The text up to the next NUL.
std::string TextAt(std::string_view bytes, std::size_t offset) {
  if (offset >= bytes.size()) return "";
  return std::string(bytes.substr(offset, bytes.find('\0', offset) - offset));
}

std::string AbsolutePath(std::string_view path) {
  const bool complete = path.empty() || path.starts_with('/');
  return (complete ? "" : "/") + std::string(path);
}

std::size_t CountOf(std::string_view word, std::string_view text) {
  std::size_t count = 0;
  for (auto place = text.find(word); place != std::string_view::npos;
       place = text.find(word, place + word.size())) {
    ++count;
  }
  return count;
}

/// How well a page answers; 0 when a word is missing.
std::size_t Score(const std::vector<std::string>& words, std::string_view title,
                  std::string_view text) {
  constexpr std::size_t kTitleWeight = 100;
  std::size_t score = 0;
  for (const std::string& word : words) {
    const std::size_t hits = kTitleWeight * CountOf(word, title) + CountOf(word, text);
    if (hits == 0) return 0;
    score += hits;
  }
  return score;
}

}  // namespace

HelpBook::HelpBook(const std::filesystem::path& path) : file_(path) {
  ReadSystem();
  ReadContexts();
}

void HelpBook::ReadSystem() {
  // A version number, then entries of a code, a length and that many bytes.
  enum Code : std::uint32_t { kContentsFile = 0, kIndexFile = 1, kDefaultTopic = 2 };
  const std::string system = file_.Read("/#SYSTEM").value_or("");
  for (std::size_t place = 4; place + 4 <= system.size();) {
    const std::uint32_t code = LittleEndian(system, place, 2);
    const std::uint32_t length = LittleEndian(system, place + 2, 2);
    const std::string text = TextAt(system.substr(0, place + 4 + length), place + 4);
    if (code == kContentsFile) contents_ = ReadSiteMap(Read(text).value_or(""));
    if (code == kIndexFile) index_ = ReadSiteMap(Read(text).value_or(""));
    if (code == kDefaultTopic) default_topic_ = AbsolutePath(text);
    place += 4 + length;
  }
}

void HelpBook::ReadContexts() {
  // The size of the table, then pairs of a context number and an offset into the strings.
  const std::string table = file_.Read("/#IVB").value_or("");
  const std::string strings = file_.Read("/#STRINGS").value_or("");
  for (std::size_t place = 4; place + 8 <= table.size(); place += 8) {
    contexts_[LittleEndian(table, place, 4)] =
        AbsolutePath(TextAt(strings, LittleEndian(table, place + 4, 4)));
  }
}

std::optional<std::string> HelpBook::TopicOfContext(std::int32_t context) const {
  const auto topic = contexts_.find(static_cast<std::uint32_t>(context));
  if (topic == contexts_.end()) return std::nullopt;
  return topic->second;
}

std::optional<std::string> HelpBook::Read(std::string_view path) const {
  return file_.Read(AbsolutePath(path));
}

std::vector<Topic> HelpBook::Search(std::string_view query) const {
  std::vector<std::string> words;
  std::istringstream stream(text::ToLower(query));
  for (std::string word; stream >> word;) words.push_back(word);

  std::vector<std::pair<std::size_t, Topic>> found;
  for (const std::string& path : file_.List()) {
    if (!text::ToLower(path).ends_with(".html")) continue;
    const std::string html = file_.Read(path).value_or("");
    const std::string title = TitleOf(html);
    const std::size_t score = Score(words, text::ToLower(title), text::ToLower(PlainText(html)));
    if (score > 0) found.emplace_back(score, Topic{path, title});
  }
  std::ranges::stable_sort(found, std::greater<>(), [](const auto& hit) { return hit.first; });

  std::vector<Topic> topics;
  topics.reserve(found.size());
  for (auto& [score, topic] : found) topics.push_back(std::move(topic));
  return topics;
}

}  // namespace dorvane::help
