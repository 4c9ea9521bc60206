#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "endpoint/database.h"

namespace dorvane {

/// The options of a conversion: lines `name=value` behind the 19th line of a settings file. Blanks
/// around name and value, and the case of the name's letters, do not count.

/// The option that may stand there several times.
inline constexpr std::string_view kReportOption = "Report";

/// Sets what the line says in the endpoints. Throws RunTimeError, with a description that names the
/// option: kInvalidArgument for a line or name that is no option's, kTypeMismatch or kOverflow for
/// a value that the option does not take.
void ReadOption(std::string_view line, IDatabase& src, IDatabase& dest);

/// The lines of the options that differ from their defaults.
std::vector<std::string> OptionLines(const IDatabase& src, const IDatabase& dest);

}  // namespace dorvane
