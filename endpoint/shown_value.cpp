#include "endpoint/shown_value.h"

#include <fmt/format.h>

#include "platform/ado/value_text.h"
#include "platform/text/utf8.h"

namespace dorvane {

std::string ShownValue(std::string_view column, std::string_view text) {
  constexpr std::size_t kMostCharacters = 60;
  const std::string_view beginning = text::FirstCharacters(text, kMostCharacters);
  const char* const rest = beginning.size() < text.size() ? " ..." : "";
  return fmt::format("{} = {}{}", column, beginning, rest);
}

void Count(ValueChanges& changes, const ado::FieldInfo& field, const ado::DateTime& moment) {
  if (++changes.count > 1) return;
  changes.first = ShownValue(field.name, ado::ToText(moment, field.type));
}

}  // namespace dorvane
