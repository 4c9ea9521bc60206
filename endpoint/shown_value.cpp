#include "endpoint/shown_value.h"

#include <fmt/format.h>

#include "platform/text/utf8.h"

namespace dorvane {

std::string ShownValue(std::string_view column, std::string_view text) {
  constexpr std::size_t kMostCharacters = 60;
  const std::string_view beginning = text::FirstCharacters(text, kMostCharacters);
  const char* const rest = beginning.size() < text.size() ? " ..." : "";
  return fmt::format("{} = {}{}", column, beginning, rest);
}

}  // namespace dorvane
