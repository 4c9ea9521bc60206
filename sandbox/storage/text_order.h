#pragma once

#include <string>
#include <string_view>

struct sqlite3;

namespace sandbox {

/// The name under which the server's text order is known to SQLite.
inline constexpr const char* kTextCollation = "TSQL";

/// The code point with which `code` is compared: case counts for nothing.
char32_t FoldCase(char32_t code);
char32_t ToUpper(char32_t code);

/// Takes one code point off the front of UTF-8 text; a broken byte stands for itself.
char32_t NextCodePoint(std::string_view& text);
void AppendUtf8(std::string& text, char32_t code);

/// Compares as the server's default collation does: no case, trailing blanks ignored. <0, 0, >0.
int CompareText(std::string_view left, std::string_view right);

/// Names of tables and columns are equal without regard to case.
bool SameName(std::string_view left, std::string_view right);

std::string LowerText(std::string_view text);
std::string UpperText(std::string_view text);

void RegisterTextOrder(sqlite3* connection);

}  // namespace sandbox
