#include "platform/help/html_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "platform/text/ascii.h"
#include "platform/text/utf8.h"

namespace dorvane::help {

namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 5> kEntities{
    {{"amp", "&"}, {"lt", "<"}, {"gt", ">"}, {"quot", "\""}, {"nbsp", " "}}};

/// Appends the character that an entity's name stands for; false when it is none.
bool AppendEntity(std::string& text, std::string_view name) {
  if (name.starts_with('#')) {
    unsigned code = 0;
    const auto [end, error] = std::from_chars(name.data() + 1, name.data() + name.size(), code);
    const bool valid = error == std::errc() && end == name.data() + name.size() && code < 0x110000;
    if (valid) text::AppendUtf8(text, code);
    return valid;
  }
  const auto* entity =
      std::ranges::find(kEntities, name, [](const auto& pair) { return pair.first; });
  if (entity == kEntities.end()) return false;
  text += entity->second;
  return true;
}

/// What stands between <name> and </name>, both spelled in lower case; empty when one is missing.
std::string_view Between(std::string_view html, const std::string& lower, const std::string& name) {
  const auto begin = lower.find("<" + name + ">");
  const auto end = lower.find("</" + name + ">");
  if (begin == std::string::npos || end == std::string::npos) return {};
  const auto from = begin + name.size() + 2;
  return from <= end ? html.substr(from, end - from) : std::string_view();
}

std::string StripTags(std::string_view html) {
  std::string text;
  bool in_tag = false;
  for (const char c : html) {
    if (c == '<') {
      in_tag = true;
      text += ' ';
    } else if (c == '>' && in_tag) {
      in_tag = false;
    } else if (!in_tag) {
      text += c;
    }
  }
  return text;
}

std::string CollapseWhiteSpace(std::string_view text) {
  std::string joined;
  bool gap = false;
  for (const char c : text) {
    const bool blank = text::kWhiteSpace.find(c) != std::string_view::npos;
    if (!blank && gap && !joined.empty()) joined += ' ';
    if (!blank) joined += c;
    gap = blank;
  }
  return joined;
}

}  // namespace

std::string DecodeEntities(std::string_view text) {
  constexpr std::size_t kLongestName = 10;
  std::string decoded;
  while (!text.empty()) {
    const auto end = text.find(';');
    const bool entity = text.front() == '&' && end != std::string_view::npos && end <= kLongestName;
    if (entity && AppendEntity(decoded, text.substr(1, end - 1))) {
      text.remove_prefix(end + 1);
      continue;
    }
    decoded += text.front();
    text.remove_prefix(1);
  }
  return decoded;
}

std::string TitleOf(std::string_view html) {
  return CollapseWhiteSpace(DecodeEntities(Between(html, text::ToLower(html), "title")));
}

std::string PlainText(std::string_view html) {
  const std::string_view body = Between(html, text::ToLower(html), "body");
  return CollapseWhiteSpace(DecodeEntities(StripTags(body.empty() ? html : body)));
}

}  // namespace dorvane::help
