#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sandbox {

/// How text is compared: without regard to case, with it, or by code points.
enum class TextOrder { Default, CaseSensitive, Binary };

/// The order that a collation of that name stands for; nothing for a name that is none.
std::optional<TextOrder> OrderOfCollation(std::string_view name);

/// The code point with which `code` is compared: case counts for nothing.
char32_t FoldCase(char32_t code);
char32_t ToUpper(char32_t code);

/// Compares as the server's default collation does: no case, trailing blanks ignored. <0, 0, >0.
int CompareText(std::string_view left, std::string_view right);

/// The same with case: what differs by it alone comes small letters first.
int CompareCaseSensitive(std::string_view left, std::string_view right);

/// By code points, trailing blanks ignored.
int CompareBinary(std::string_view left, std::string_view right);

/// Names of tables and columns are equal without regard to case.
bool SameName(std::string_view left, std::string_view right);

std::string LowerText(std::string_view text);
std::string UpperText(std::string_view text);

}  // namespace sandbox
