#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace sandbox {

/// What a server lacks, for tests of clients that must get along without it.
struct ServerTraits {
  /// Procedures and catalog views that it does not know: "sp_help", "sys.columns".
  std::vector<std::string> unknown;
  /// sp_tables shows names in lower case, everything else as they were created.
  bool lower_case_tables = false;
  bool Knows(std::string_view name) const;
};

}  // namespace sandbox
