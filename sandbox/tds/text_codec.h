#pragma once

#include <string>
#include <string_view>

namespace sandbox::tds {

// Text inside the server is UTF-8. On the wire it is UTF-16 (little-endian) or, for the char types
// of the server's collation, Windows-1252. What cannot be converted becomes U+FFFD or "?".

void AppendUtf16(std::string_view utf8, std::string& out);
void AppendAnsi(std::string_view utf8, std::string& out);
std::string Utf16ToUtf8(std::string_view bytes);
std::string AnsiToUtf8(std::string_view bytes);

/// Converts UTF-16 that arrives in pieces, which may be cut anywhere.
class Utf16Decoder {
 public:
  void Append(std::string_view piece, std::string& utf8);
  /// Ends the text.
  void Finish(std::string& utf8);

 private:
  std::string rest_;  // a part of a character, from the end of the last piece
};

}  // namespace sandbox::tds
