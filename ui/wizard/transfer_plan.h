#pragma once

#include <cstddef>
#include <string>

#include "endpoint/database.h"

namespace dorvane {

/// One line that says what a transfer of so many tables will do: from where to where, what becomes
/// of tables that are there already, and the options that are not as a new wizard has them.
std::string PlanText(const IDatabase& src, const IDatabase& dest, std::size_t tables);

}  // namespace dorvane
