#pragma once

#include <set>
#include <string>
#include <string_view>

namespace dorvane {

/// Which failures of a run are shown in a box of their own. A failure that was shown already, of
/// another table or with another count, is not shown once more: a lost connection is one box, not
/// one a table.
class FailureBoxes {
 public:
  /// A run begins.
  void Clear();
  /// Whether this failure gets a box; `table` is the one in hand.
  bool Wants(std::string_view message, std::string_view table);
  /// Whether the box offers to show the rest in the list only: each but the first.
  bool Offers() const { return shown_.size() > 1; }
  void ShowRestInListOnly() { list_only_ = true; }

 private:
  std::set<std::string> shown_;
  bool list_only_ = false;
};

}  // namespace dorvane
