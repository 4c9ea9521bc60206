#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/ado/types.h"
#include "platform/ado/value.h"

namespace dorvane {

/// 128 bits of XXH3: two different rows of all tables of the world are not expected to share them.
struct Hash {
  std::uint64_t high = 0;
  std::uint64_t low = 0;
  auto operator<=>(const Hash&) const = default;
};

/// What a row is told by: its key, then all of it.
struct RowHash {
  Hash key;
  Hash row;
  auto operator<=>(const RowHash&) const = default;
};

/// Makes the hashes of rows whose values a table with columns of `types` takes. `key` are the
/// positions of the columns that tell rows apart; when there are none the whole row does. Both must
/// outlive this.
class RowHasher {
 public:
  RowHasher(const std::vector<ado::DataType>& types, const std::vector<std::size_t>& key)
      : types_(types), key_(key) {}

  RowHash Of(std::span<const ado::Value> row);

 private:
  const std::vector<ado::DataType>& types_;
  const std::vector<std::size_t>& key_;
  std::string form_;
};

}  // namespace dorvane
