#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "sandbox/binder/binder.h"
#include "sandbox/parser/ast.h"

namespace sandbox {

class DatabaseLink;
class Session;

/// One view of the catalog: its columns, and what makes its rows.
struct SystemView {
  const char* schema;
  const char* name;
  std::vector<ColumnInfo> columns;
  std::function<std::vector<std::vector<Value>>(Session& session, DatabaseLink& link)> rows;
};

/// The position of a view of sys or INFORMATION_SCHEMA, or nothing.
std::optional<std::size_t> FindSystemView(const ObjectName& name);
std::vector<ObjectName> SystemViewNames();

/// Fills a temporary table with the view's rows as they are now and returns it.
Relation FillSystemView(std::size_t view, Session& session, DatabaseLink& link);

// The views of sys by what they are about, and those of INFORMATION_SCHEMA, in files of their own.
std::vector<SystemView> SysObjectViews();
std::vector<SystemView> SysColumnViews();
std::vector<SystemView> SysKeyViews();
std::vector<SystemView> SysServerViews();
std::vector<SystemView> InformationSchemaViews();

}  // namespace sandbox
