#pragma once

#include <memory>
#include <utility>

namespace dorvane {

/// Makes a widget, layout or other Qt object that `parent` owns and deletes. `arguments` are the
/// constructor's arguments before the parent.
template <typename T, typename Parent, typename... Arguments>
T& MakeChild(Parent& parent, Arguments&&... arguments) {
  return *std::make_unique<T>(std::forward<Arguments>(arguments)..., &parent).release();
}

/// The same for a control that tests and assistive tools find by its name.
template <typename T, typename Parent, typename... Arguments>
T& MakeNamed(const char* name, Parent& parent, Arguments&&... arguments) {
  T& child = MakeChild<T>(parent, std::forward<Arguments>(arguments)...);
  child.setObjectName(name);
  return child;
}

/// Makes a layout inside another one, at the place that `where` gives (row and column of a grid).
template <typename T, typename Layout, typename... Where>
T& MakeLayout(Layout& outer, Where... where) {
  T& inner = *std::make_unique<T>().release();
  outer.addLayout(&inner, where...);
  return inner;
}

}  // namespace dorvane
