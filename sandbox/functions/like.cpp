#include "sandbox/functions/functions.h"
#include "sandbox/text/text_order.h"
#include "sandbox/text/utf8.h"

namespace sandbox {

namespace {

// One step of a pattern: what it matches, and the pattern behind it.
struct PatternItem {
  enum class Kind { Any, One, Set, Character } kind = Kind::Character;
  char32_t character = 0;
  std::string_view set;
  bool negated = false;
  std::string_view rest;
};

PatternItem NextItem(std::string_view pattern, char32_t escape) {
  PatternItem item;
  std::string_view rest = pattern;
  item.character = NextCodePoint(rest);
  item.rest = rest;
  if (escape != 0 && item.character == escape && !rest.empty()) {
    item.character = NextCodePoint(rest);
    item.rest = rest;
    return item;
  }
  if (item.character == '%') item.kind = PatternItem::Kind::Any;
  if (item.character == '_') item.kind = PatternItem::Kind::One;
  if (item.character != '[') return item;
  const std::size_t close = rest.find(']', 1);
  if (close == std::string_view::npos) return item;
  item.kind = PatternItem::Kind::Set;
  item.set = rest.substr(0, close);
  item.negated = !item.set.empty() && item.set.front() == '^';
  if (item.negated) item.set.remove_prefix(1);
  item.rest = rest.substr(close + 1);
  return item;
}

// What characters are compared by: FoldCase, or themselves.
using Fold = char32_t (*)(char32_t);

char32_t Itself(char32_t character) {
  return character;
}

bool InSet(std::string_view set, char32_t character, Fold fold) {
  character = fold(character);
  while (!set.empty()) {
    const char32_t first = fold(NextCodePoint(set));
    if (set.size() > 1 && set.front() == '-') {
      set.remove_prefix(1);
      const char32_t last = fold(NextCodePoint(set));
      if (character >= first && character <= last) return true;
    } else if (character == first) {
      return true;
    }
  }
  return false;
}

bool Matches(const PatternItem& item, char32_t character, Fold fold) {
  switch (item.kind) {
    case PatternItem::Kind::Set:
      return InSet(item.set, character, fold) != item.negated;
    case PatternItem::Kind::Character:
      return fold(character) == fold(item.character);
    default:
      return true;
  }
}

}  // namespace

// Greedy with one point to go back to: linear in memory, and never exponential in time.
bool MatchesPattern(std::string_view text, std::string_view pattern, char32_t escape,
                    bool with_case) {
  const Fold fold = with_case ? Itself : FoldCase;
  std::string_view retry_text, retry_pattern;
  bool can_retry = false;
  while (!text.empty()) {
    if (!pattern.empty()) {
      const PatternItem item = NextItem(pattern, escape);
      if (item.kind == PatternItem::Kind::Any) {
        can_retry = true;
        retry_text = text;
        retry_pattern = pattern = item.rest;
        continue;
      }
      std::string_view rest = text;
      if (Matches(item, NextCodePoint(rest), fold)) {
        text = rest;
        pattern = item.rest;
        continue;
      }
    }
    const bool only_blanks =
        pattern.empty() && text.find_first_not_of(' ') == std::string_view::npos;
    if (only_blanks) return true;
    if (!can_retry) return false;
    NextCodePoint(retry_text);
    text = retry_text;
    pattern = retry_pattern;
  }
  while (!pattern.empty() && pattern.front() == '%') pattern.remove_prefix(1);
  return pattern.empty();
}

}  // namespace sandbox
