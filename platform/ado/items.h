#pragma once

#include <algorithm>
#include <functional>
#include <iterator>
#include <string_view>

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

/// The item of that name: the one spelled exactly so, else the only one that differs from it in the
/// case of ASCII letters; null when there is none, or no one way to read the name.
template <typename Items, typename Name>
auto* FindItemOrNull(Items& items, std::string_view name, Name name_of) {
  const auto spelled = [&](const auto& item) { return std::invoke(name_of, item) == name; };
  const auto alike = [&](const auto& item) {
    return text::EqualsIgnoringCase(std::invoke(name_of, item), name);
  };
  auto found = std::ranges::find_if(items, spelled);
  if (found == items.end()) {
    found = std::ranges::find_if(items, alike);
    if (found != items.end() && std::any_of(std::next(found), items.end(), alike)) {
      found = items.end();
    }
  }
  return found != items.end() ? &*found : nullptr;
}
template <typename Items>
auto* FindItemOrNull(Items& items, std::string_view name) {
  return FindItemOrNull(items, name, [](const auto& item) { return std::string_view(item.name); });
}

/// The same, or throws as ThrowItemNotFound does.
template <typename Items>
auto& FindItem(Items& items, std::string_view name, const char* collection) {
  auto* found = FindItemOrNull(items, name);
  if (found == nullptr) ThrowItemNotFound(collection);
  return *found;
}

}  // namespace dorvane::ado
