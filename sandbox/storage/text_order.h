#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "sandbox/sql/types.h"

struct sqlite3;

namespace sandbox {

/// The names under which the server's text orders are known to SQLite.
inline constexpr const char* kTextCollation = "TSQL";
const char* StoredCollation(TextOrder order);

/// The order that a collation of that name stands for; nothing for a name that is none.
std::optional<TextOrder> OrderOfCollation(std::string_view name);

/// The code point with which `code` is compared: case counts for nothing.
char32_t FoldCase(char32_t code);
char32_t ToUpper(char32_t code);

/// Takes one code point off the front of UTF-8 text; a broken byte stands for itself.
char32_t NextCodePoint(std::string_view& text);
void AppendUtf8(std::string& text, char32_t code);

/// Compares as the server's default collation does: no case, trailing blanks ignored. <0, 0, >0.
int CompareText(std::string_view left, std::string_view right);

/// The same with case: what differs by it alone comes small letters first.
int CompareCaseSensitive(std::string_view left, std::string_view right);

/// Names of tables and columns are equal without regard to case.
bool SameName(std::string_view left, std::string_view right);

std::string LowerText(std::string_view text);
std::string UpperText(std::string_view text);

void RegisterTextOrder(sqlite3* connection);

}  // namespace sandbox
