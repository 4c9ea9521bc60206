#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "endpoint/database.h"
#include "endpoint/references.h"

namespace dorvane {

/// The tables of a run that have not begun, where some must not begin before others have ended.
class TableQueue {
 public:
  /// Any table may begin at any time.
  explicit TableQueue(NameList tables);
  /// A table waits for those in front of it that a key of the destination joins with it, so that
  /// its rows meet the same rows there as if all tables came one after the other. `dest_names` are
  /// those of `tables`, one each; letter case does not tell names apart.
  TableQueue(NameList tables, const std::vector<ado::TableName>& dest_names,
             const std::vector<Reference>& references);

  /// Begins the next table that may. None when there is none, or none just now.
  std::optional<std::string> Begin();
  void End(const std::string& table);
  /// True when every table has begun.
  bool IsEmpty() const { return waiting_.empty(); }

 private:
  struct Waiting {
    std::string table;
    NameList blockers;  // those that have not ended
  };
  std::vector<Waiting> waiting_;
};

}  // namespace dorvane
