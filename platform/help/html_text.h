#pragma once

#include <string>
#include <string_view>

namespace dorvane::help {

/// The words of an HTML page (UTF-8), runs of white space as one blank; without its head.
std::string PlainText(std::string_view html);

/// The text of its title element; empty when it has none.
std::string TitleOf(std::string_view html);

/// "&amp;", "&lt;", "&gt;", "&quot;", "&nbsp;" and "&#n;" as characters.
std::string DecodeEntities(std::string_view text);

}  // namespace dorvane::help
