#pragma once

#include <string>
#include <string_view>

namespace dorvane {

// What stands inside a literal of a statement: text with its quotes doubled, bytes as digits.

/// The text with `prefix` in front of each of the characters.
std::string PrefixEach(std::string_view text, std::string_view characters, char prefix);
/// Text for the inside of a literal that SQL Server reads: "'" doubled.
std::string SqlText(std::string_view text);

/// Appends two upper-case hexadecimal digits a byte.
void AppendHexDigits(std::string& out, std::string_view bytes);
/// "0x" and the digits of every byte.
std::string HexCode(std::string_view bytes);
/// The bytes that a binary default stands for: those of a hexadecimal literal "0x...", else those
/// of the text.
std::string BinaryDefaultBytes(std::string_view text);
/// The 16 bytes of a braced identifier's digits in their text order; one zero byte for any other
/// text.
std::string GuidBytes(std::string_view braced);

}  // namespace dorvane
