#pragma once

#include <string>
#include <string_view>

namespace dorvane::scheduler {

/// Throws RunTimeError kInvalidTaskName, "Please enter a valid task name", when the name cannot be
/// a file of its own: empty, "." or "..", with "/" or a control character, not UTF-8, or longer
/// than 200 bytes. Blanks and letters of any script are fine.
void CheckTaskName(std::string_view name);

/// The name for file and unit names, without an ending: letters, digits, "_", ":" and inner "."
/// stand, every other byte becomes "\xNN". Different names stay different. At most 200 bytes: a
/// longer one ends in a hash of the whole.
std::string EscapeTaskName(std::string_view name);

}  // namespace dorvane::scheduler
