#pragma once

#include <string_view>

namespace dorvane {

/// Writes to standard error as far as it takes anything: a closed, full or vanished one is no
/// reason to end a conversion.
void WriteStandardError(std::string_view text);

/// Opens those of the descriptors 0 to 2 that are closed on /dev/null, so that no file or
/// connection of the program gets their numbers.
void OpenStandardDescriptors();

}  // namespace dorvane
