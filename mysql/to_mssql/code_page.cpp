#include "mysql/to_mssql/code_page.h"

#include <fmt/format.h>
#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>

#include "platform/text/ascii.h"
#include "platform/text/code_page.h"

namespace dorvane::to_mssql {

namespace {

constexpr int kAnsi = 1252;
const iconv_t kNone = reinterpret_cast<iconv_t>(-1);

}  // namespace

CodePage::CodePage(int number)
    : is_ansi_(number == kAnsi),
      converter_(is_ansi_ ? kNone : iconv_open(fmt::format("CP{}", number).c_str(), "UTF-8")) {}

CodePage::~CodePage() {
  if (converter_ != kNone) iconv_close(converter_);
}

bool CodePage::Takes(std::string_view utf8) const {
  if (text::IsAscii(utf8)) return true;
  if (is_ansi_) return text::FitsAnsi(utf8);
  if (converter_ == kNone) return true;
  iconv(converter_, nullptr, nullptr, nullptr, nullptr);
  std::array<char, 4096> codes;
  char* in = const_cast<char*>(utf8.data());  // that iconv leaves alone
  for (std::size_t left = utf8.size(); left > 0;) {
    char* out = codes.data();
    std::size_t room = codes.size();
    const std::size_t result = iconv(converter_, &in, &left, &out, &room);
    if (result == static_cast<std::size_t>(-1) && errno != E2BIG) return false;
  }
  return true;
}

bool IsOfCodePage(std::string_view type) {
  constexpr std::array<std::string_view, 3> kTypes{"char", "varchar", "text"};
  const std::string_view word = type.substr(0, type.find_first_of("( "));
  return std::ranges::any_of(
      kTypes, [word](std::string_view each) { return text::EqualsIgnoringCase(each, word); });
}

std::shared_ptr<const CodePage> PageOfCollation(ado::Connection& server,
                                                const std::string& expression) {
  constexpr int kUtf8 = 65001;
  ado::Recordset answer = server.Execute(
      fmt::format("select convert(int, collationproperty({}, 'CodePage'))", expression));
  const std::string text = answer.AtEnd() ? "" : answer.Field(0).Text();
  int number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  if (number == 0 || number == kUtf8) return nullptr;
  return std::make_shared<const CodePage>(number);
}

}  // namespace dorvane::to_mssql
