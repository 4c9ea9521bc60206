#include "sandbox/tds/text_codec.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <stdexcept>

#include "sandbox/text/utf16.h"

namespace sandbox::tds {
namespace {

/// What stands in for input that has no counterpart, and how many input bytes it replaces.
struct Substitute {
  std::size_t consumed;
  std::string text;
};
using SubstituteFor = Substitute (*)(std::string_view rest);

class Converter {
 public:
  Converter(const char* to, const char* from, SubstituteFor substitute)
      : handle_(iconv_open(to, from)), substitute_(substitute) {
    if (handle_ == reinterpret_cast<iconv_t>(-1)) {
      throw std::runtime_error(std::string("no conversion from ") + from + " to " + to);
    }
  }
  ~Converter() { iconv_close(handle_); }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  void Append(std::string_view in, std::string& out) {
    iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    while (!in.empty()) {
      std::array<char, 4096> block;
      char* from = const_cast<char*>(in.data());
      char* to = block.data();
      std::size_t from_left = in.size();
      std::size_t to_left = block.size();
      std::size_t result = iconv(handle_, &from, &from_left, &to, &to_left);
      int error = result == static_cast<std::size_t>(-1) ? errno : 0;
      out.append(block.data(), to);
      in.remove_prefix(in.size() - from_left);
      if (error == EILSEQ || error == EINVAL) {
        Substitute substitute = substitute_(in);
        out.append(substitute.text);
        in.remove_prefix(std::min(substitute.consumed, in.size()));
      }
    }
  }

 private:
  iconv_t handle_;
  SubstituteFor substitute_;
};

std::size_t Utf8SequenceLength(std::string_view text) {
  std::size_t length = 1;
  while (length < text.size() && (text[length] & 0xC0) == 0x80) ++length;
  return length;
}

// Windows keeps the five unused codes of its page as C1 controls; iconv refuses them.
Substitute ForAnsi(std::string_view rest) {
  std::size_t length = Utf8SequenceLength(rest);
  bool control = length == 2 && rest[0] == '\xC2' && static_cast<unsigned char>(rest[1]) < 0xA0;
  return {length, control ? std::string(1, rest[1]) : "?"};
}
Substitute FromAnsi(std::string_view rest) {
  return {1, std::string("\xC2") + rest[0]};
}

}  // namespace

void AppendAnsi(std::string_view utf8, std::string& out) {
  if (IsAscii(utf8)) {
    out.append(utf8);
    return;
  }
  thread_local Converter converter("CP1252", "UTF-8", ForAnsi);
  converter.Append(utf8, out);
}

std::string AnsiToUtf8(std::string_view bytes) {
  if (IsAscii(bytes)) return std::string(bytes);
  thread_local Converter converter("UTF-8", "CP1252", FromAnsi);
  std::string out;
  converter.Append(bytes, out);
  return out;
}

}  // namespace sandbox::tds
