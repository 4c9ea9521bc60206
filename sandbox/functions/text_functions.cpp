#include <algorithm>
#include <array>

#include "sandbox/functions/scalar_functions.h"
#include "sandbox/text/code_page.h"
#include "sandbox/text/text_order.h"
#include "sandbox/text/utf8.h"
#include "sandbox/values/convert.h"
#include "sandbox/values/errors.h"
#include "sandbox/values/type_rules.h"

namespace sandbox {

namespace {

using namespace scalar;

// Whether the first argument counts in UTF-16.
bool Unicode(Call call) {
  return IsUnicode(call.types[0].type);
}

std::size_t Units(std::string_view text, bool utf16) {
  return utf16 ? Utf16Length(text) : CodePointCount(text);
}

std::string TrimLeft(std::string text) {
  return text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
}

std::string Slice(std::string_view text, std::int64_t start, std::int64_t length, bool utf16) {
  if (length < 0) Raise(15034, "Invalid length parameter passed to the function.");
  const std::int64_t end = std::min<std::int64_t>(start + length, INT32_MAX);
  const std::int64_t first = std::max<std::int64_t>(start, 1);
  if (end <= first) return "";
  const std::string_view upto = Prefix(text, static_cast<std::size_t>(end - 1), utf16);
  const std::string_view before = Prefix(upto, static_cast<std::size_t>(first - 1), utf16);
  return std::string(upto.substr(before.size()));
}

Value Substring(Call call) {
  const std::int64_t start = std::clamp<std::int64_t>(Integer(call, 1), -INT32_MAX, INT32_MAX);
  const std::int64_t length = std::min<std::int64_t>(Integer(call, 2), INT32_MAX);
  if (const auto* binary = std::get_if<BinaryValue>(&call.values[0])) {
    const std::int64_t size = static_cast<std::int64_t>(binary->bytes.size());
    const std::int64_t first = std::clamp<std::int64_t>(start, 1, size + 1);
    const std::int64_t end = std::clamp<std::int64_t>(start + length, first, size + 1);
    return BinaryValue{binary->bytes.substr(static_cast<std::size_t>(first - 1),
                                            static_cast<std::size_t>(end - first))};
  }
  return Slice(Text(call, 0), start, length, Unicode(call));
}

TypeInfo ReturnText(Types types) {
  const bool unicode = !types.empty() && IsUnicode(types[0].type);
  if (types.empty() || !IsText(types[0].type)) return {SqlType::VarChar, 8000, 0, 0};
  return {unicode ? SqlType::NVarChar : SqlType::VarChar, types[0].length, 0, 0};
}

TypeInfo ReturnLongest(Types types) {
  TypeInfo type = ReturnText(types);
  if (type.length > 0) type.length = IsUnicode(type.type) ? 4000 : 8000;
  return type;
}

TypeInfo ReturnSubstring(Types types) {
  if (IsBinary(types[0].type)) return {SqlType::VarBinary, types[0].length, 0, 0};
  return ReturnText(types);
}

Value Left(Call call) {
  return Slice(Text(call, 0), 1, Integer(call, 1), Unicode(call));
}

Value Right(Call call) {
  const std::string text = Text(call, 0);
  const auto size = static_cast<std::int64_t>(Units(text, Unicode(call)));
  const std::int64_t count = std::min(size, Integer(call, 1));
  return Slice(text, size - count + 1, count, Unicode(call));
}

Value Replace(Call call) {
  const std::string text = Text(call, 0), what = Text(call, 1), with = Text(call, 2);
  if (what.empty()) return text;
  const std::string folded = LowerText(text), sought = LowerText(what);
  // Folding keeps the byte length of all letters of the code page; else search as written.
  const std::string& haystack = folded.size() == text.size() ? folded : text;
  const std::string& needle = folded.size() == text.size() ? sought : what;
  std::string result;
  std::size_t at = 0;
  for (std::size_t found = haystack.find(needle); found != std::string::npos;
       found = haystack.find(needle, at)) {
    result.append(text, at, found - at);
    result += with;
    at = found + needle.size();
  }
  return result.append(text, at, std::string::npos);
}

Value Replicate(Call call) {
  const std::string text = Text(call, 0);
  const std::int64_t count = Integer(call, 1);
  if (count < 0) return std::monostate();
  std::int64_t limit = call.types[0].length < 0        ? INT32_MAX
                       : IsUnicode(call.types[0].type) ? 4000
                                                       : 8000;
  limit = text.empty() ? 0 : limit / static_cast<std::int64_t>(Units(text, Unicode(call)));
  std::string result;
  result.reserve(text.size() * static_cast<std::size_t>(std::min(count, limit)));
  for (std::int64_t i = 0; i < std::min(count, limit); ++i) result += text;
  return result;
}

Value Length(Call call) {
  if (const auto* binary = std::get_if<BinaryValue>(&call.values[0])) {
    return static_cast<std::int64_t>(binary->bytes.size());
  }
  return static_cast<std::int64_t>(Utf16Length(TrimRight(Text(call, 0))));
}

Value DataLength(Call call) {
  const TypeInfo type =
      call.types[0].type == SqlType::Variant ? VariantBase(call.values[0]) : call.types[0];
  if (IsText(type.type)) {
    const std::string text = Text(call, 0);
    return static_cast<std::int64_t>(IsUnicode(type.type) ? Utf16Length(text) * 2
                                                          : CodePointCount(text));
  }
  if (const auto* binary = std::get_if<BinaryValue>(&call.values[0])) {
    return static_cast<std::int64_t>(binary->bytes.size());
  }
  return static_cast<std::int64_t>(MaxLength(type));
}

Value WideCharacter(Call call) {
  const std::int64_t code = Integer(call, 0);
  if (code < 0 || code > 65535 || (code >= 0xD800 && code < 0xE000)) return std::monostate();
  std::string text;
  AppendUtf8(text, static_cast<char32_t>(code));
  return text;
}

const std::array kFunctions{
    ScalarFunction{"datalength", 1, 1, ReturnInt, DataLength},
    ScalarFunction{"left", 2, 2, ReturnText, Left},
    ScalarFunction{"len", 1, 1, ReturnInt, Length},
    ScalarFunction{"lower", 1, 1, ReturnText,
                   [](Call c) -> Value { return LowerText(Text(c, 0)); }},
    ScalarFunction{"ltrim", 1, 1, ReturnText, [](Call c) -> Value { return TrimLeft(Text(c, 0)); }},
    ScalarFunction{"nchar", 1, 1,
                   [](Types) {
                     return TypeInfo{SqlType::NChar, 1, 0, 0};
                   },
                   WideCharacter},
    ScalarFunction{"replace", 3, 3, ReturnLongest, Replace},
    ScalarFunction{"replicate", 2, 2, ReturnLongest, Replicate},
    ScalarFunction{"right", 2, 2, ReturnText, Right},
    ScalarFunction{"rtrim", 1, 1, ReturnText,
                   [](Call c) -> Value { return TrimRight(Text(c, 0)); }},
    ScalarFunction{"substring", 3, 3, ReturnSubstring, Substring},
    ScalarFunction{"upper", 1, 1, ReturnText,
                   [](Call c) -> Value { return UpperText(Text(c, 0)); }},
};

}  // namespace

std::span<const ScalarFunction> TextFunctions() {
  return kFunctions;
}

}  // namespace sandbox
