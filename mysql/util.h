#pragma once

#include <string>

namespace dorvane {

/// Small text helpers of the MySQL endpoint; no state.
class Util {
 public:
  /// Replaces the backquotes alternately by "[" and "]", in place; returns the text as well.
  std::string ReplaceDashes(std::string& text) const;
};

}  // namespace dorvane
