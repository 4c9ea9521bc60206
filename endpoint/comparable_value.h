#pragma once

#include <string>

#include "platform/ado/types.h"
#include "platform/ado/value.h"

namespace dorvane {

/// Appends a value in the one form that all values have which a column of `type` takes for the
/// same: an exact number without zeros that mean nothing, a float as the column rounds it, a moment
/// as text, padded text and bytes without their padding, NULL apart from everything else. No
/// value's form is the beginning of another's, so that rows can be told apart by their forms in
/// line.
void AppendComparable(std::string& out, const ado::Value& value, ado::DataType type);

}  // namespace dorvane
