#include "sandbox/text/text_order.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "sandbox/text/utf8.h"

namespace sandbox {

namespace {

// Alphabets whose capitals and small letters differ by a constant, or alternate (step 1, paired).
struct CaseRange {
  char32_t first_upper, last_upper;
  std::int32_t distance;
  bool paired;
};
constexpr std::array kCaseRanges{
    CaseRange{'A', 'Z', 32, false},     CaseRange{0xC0, 0xD6, 32, false},
    CaseRange{0xD8, 0xDE, 32, false},   CaseRange{0x100, 0x12F, 1, true},
    CaseRange{0x132, 0x137, 1, true},   CaseRange{0x14A, 0x177, 1, true},
    CaseRange{0x386, 0x386, 38, false}, CaseRange{0x388, 0x38A, 37, false},
    CaseRange{0x391, 0x3A1, 32, false}, CaseRange{0x3A3, 0x3AB, 32, false},
    CaseRange{0x400, 0x40F, 80, false}, CaseRange{0x410, 0x42F, 32, false},
    CaseRange{0x460, 0x481, 1, true},   CaseRange{0x48A, 0x4BF, 1, true},
    CaseRange{0x531, 0x556, 48, false}, CaseRange{0x1E00, 0x1E95, 1, true},
    CaseRange{0x1EA0, 0x1EFF, 1, true}, CaseRange{0xFF21, 0xFF3A, 32, false},
};

std::string_view WithoutTrailingBlanks(std::string_view text) {
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

unsigned char FoldByte(unsigned char byte) {
  return byte >= 'A' && byte <= 'Z' ? static_cast<unsigned char>(byte + 32) : byte;
}

int Compare(char32_t left, char32_t right) {
  return left < right ? -1 : left > right ? 1 : 0;
}

int CompareFolded(std::string_view left, std::string_view right) {
  while (!left.empty() && !right.empty()) {
    const char32_t a = FoldCase(NextCodePoint(left));
    const char32_t b = FoldCase(NextCodePoint(right));
    if (a != b) return Compare(a, b);
  }
  return left.empty() ? (right.empty() ? 0 : -1) : 1;
}

template <typename Map>
std::string MapText(std::string_view text, Map map) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) AppendUtf8(result, map(NextCodePoint(text)));
  return result;
}

}  // namespace

char32_t FoldCase(char32_t code) {
  for (const CaseRange& range : kCaseRanges) {
    if (code < range.first_upper) return code;
    if (code > range.last_upper) continue;
    if (!range.paired) return code + static_cast<char32_t>(range.distance);
    return (code - range.first_upper) % 2 == 0 ? code + 1 : code;
  }
  return code;
}

char32_t ToUpper(char32_t code) {
  if (code == 0xFF) return 0x178;
  for (const CaseRange& range : kCaseRanges) {
    if (range.paired) {
      if (code < range.first_upper || code > range.last_upper) continue;
      return (code - range.first_upper) % 2 == 1 ? code - 1 : code;
    }
    const char32_t upper = code - static_cast<char32_t>(range.distance);
    if (upper >= range.first_upper && upper <= range.last_upper) return upper;
  }
  return code;
}

int CompareText(std::string_view left, std::string_view right) {
  left = WithoutTrailingBlanks(left);
  right = WithoutTrailingBlanks(right);
  const std::size_t common = std::min(left.size(), right.size());
  for (std::size_t i = 0; i < common; ++i) {
    const auto a = static_cast<unsigned char>(left[i]);
    const auto b = static_cast<unsigned char>(right[i]);
    if ((a | b) >= 0x80) {
      // Continuation bytes that are equal on both sides may be skipped only as whole characters.
      std::size_t start = i;
      while (start > 0 && (static_cast<unsigned char>(left[start]) & 0xC0) == 0x80) --start;
      return CompareFolded(left.substr(start), right.substr(start));
    }
    const unsigned char folded_a = FoldByte(a);
    const unsigned char folded_b = FoldByte(b);
    if (folded_a != folded_b) return folded_a < folded_b ? -1 : 1;
  }
  return left.size() == right.size() ? 0 : left.size() < right.size() ? -1 : 1;
}

int CompareBinary(std::string_view left, std::string_view right) {
  return WithoutTrailingBlanks(left).compare(WithoutTrailingBlanks(right));
}

int CompareCaseSensitive(std::string_view left, std::string_view right) {
  const int without_case = CompareText(left, right);
  return without_case ? without_case : CompareBinary(right, left);
}

std::optional<TextOrder> OrderOfCollation(std::string_view name) {
  const std::string upper = UpperText(name);
  const auto has = [&](std::string_view part) { return upper.find(part) != std::string::npos; };
  if (upper.ends_with("_BIN") || upper.ends_with("_BIN2")) return TextOrder::Binary;
  if (has("_CS_")) return TextOrder::CaseSensitive;
  if (has("_CI_") || upper == "DATABASE_DEFAULT") return TextOrder::Default;
  return std::nullopt;
}

bool SameName(std::string_view left, std::string_view right) {
  return CompareFolded(left, right) == 0;
}

std::string LowerText(std::string_view text) {
  return MapText(text, FoldCase);
}
std::string UpperText(std::string_view text) {
  return MapText(text, ToUpper);
}

}  // namespace sandbox
