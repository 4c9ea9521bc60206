#pragma once

#include <string>
#include <vector>

#include "sandbox/values/types.h"

namespace sandbox::tds {

/// A value of one column type, and how the ODBC driver shows it to a client as text.
struct SampleValue {
  std::string name;
  TypeInfo type;
  Value value;
  std::string text;
};

/// Every column type, with values at their limits.
const std::vector<SampleValue>& SampleValues();

/// Whether two values are the same, kind and content.
bool SameValue(const Value& left, const Value& right);

/// Text in several scripts, longer than any packet.
std::string LongText(std::size_t bytes);

}  // namespace sandbox::tds
