#pragma once

#include <string>

#include "tests/conversions/script.h"
#include "tests/e2e/rig.h"

namespace dorvane::test {

/// A conversion or a preview as a step asks for it.
struct Order {
  Job job = {};        // without tables: all of the source
  Lines options = {};  // as in a settings file
  int status = 0;
  bool is_previewed = false;
};

/// The order of a step's head and body. Throws std::runtime_error where the head is none.
Order ReadOrder(const std::string& head, const Lines& body);

}  // namespace dorvane::test
