#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

#include "platform/ado/types.h"
#include "platform/run_time_error.h"
#include "platform/text/ascii.h"

namespace dorvane::ado {

/// Throws RunTimeError kItemNotFound; `collection` is the source of the error.
[[noreturn]] inline void ThrowItemNotFound(const char* collection) {
  throw RunTimeError(kItemNotFound, collection,
                     "Item cannot be found in the collection corresponding to the requested "
                     "name or ordinal.");
}

/// The item of that name: the one spelled exactly so, else the first that differs only in the case
/// of ASCII letters; null when there is none.
template <typename Item>
const Item* FindItemOrNull(const std::vector<Item>& items, std::string_view name) {
  auto found = std::ranges::find(items, name, &Item::name);
  if (found == items.end()) {
    found = std::ranges::find_if(
        items, [&](const Item& item) { return text::EqualsIgnoringCase(item.name, name); });
  }
  return found != items.end() ? &*found : nullptr;
}

/// The same, or throws as ThrowItemNotFound does.
template <typename Item>
const Item& FindItem(const std::vector<Item>& items, std::string_view name,
                     const char* collection) {
  const Item* found = FindItemOrNull(items, name);
  if (found == nullptr) ThrowItemNotFound(collection);
  return *found;
}

}  // namespace dorvane::ado
