#define XXH_INLINE_ALL
#include "endpoint/row_hash.h"

#include <xxhash.h>

#include <string_view>

#include "endpoint/comparable_value.h"

namespace dorvane {

namespace {

Hash HashOf(std::string_view bytes) {
  const XXH128_hash_t hash = XXH3_128bits(bytes.data(), bytes.size());
  return {hash.high64, hash.low64};
}

}  // namespace

RowHash RowHasher::Of(std::span<const ado::Value> row) {
  form_.clear();
  for (std::size_t i = 0; i < row.size(); ++i) AppendComparable(form_, row[i], types_[i]);
  const Hash whole = HashOf(form_);
  if (key_.empty()) return {whole, whole};
  form_.clear();
  for (const std::size_t i : key_) AppendComparable(form_, row[i], types_[i]);
  return {HashOf(form_), whole};
}

}  // namespace dorvane
