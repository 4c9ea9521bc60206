#pragma once

#include <string>
#include <string_view>

namespace sandbox {

// Text inside the server is UTF-8. UTF-16 is in bytes, the low one of a unit first. What cannot be
// converted, half a unit at the end among it, becomes U+FFFD.

bool IsAscii(std::string_view text);

void AppendUtf16(std::string_view utf8, std::string& out);
std::string Utf8ToUtf16(std::string_view utf8);
std::string Utf16ToUtf8(std::string_view bytes);

/// Converts UTF-16 that arrives in pieces, which may be cut anywhere.
class Utf16Decoder {
 public:
  void Append(std::string_view piece, std::string& utf8);
  /// Ends the text.
  void Finish(std::string& utf8);

 private:
  std::string rest_;  // a part of a character, from the end of the last piece
};

}  // namespace sandbox
