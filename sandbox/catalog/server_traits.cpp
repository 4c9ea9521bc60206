#include "sandbox/catalog/server_traits.h"

#include <algorithm>

#include "sandbox/text/text_order.h"

namespace sandbox {

bool ServerTraits::Knows(std::string_view name) const {
  return std::none_of(unknown.begin(), unknown.end(),
                      [&](const std::string& each) { return SameName(each, name); });
}

}  // namespace sandbox
