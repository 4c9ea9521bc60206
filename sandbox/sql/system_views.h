#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "sandbox/sql/ast.h"
#include "sandbox/sql/binder.h"

namespace sandbox {

class DatabaseLink;
class Session;

/// One view of the catalog: its columns, and what makes its rows.
struct SystemView {
  struct Column {
    const char* name;
    TypeInfo type;
  };
  using Rows = std::vector<std::vector<Value>>;
  const char* schema;
  const char* name;
  std::vector<Column> columns;
  void (*fill)(Session& session, DatabaseLink& link, Rows& rows);
};

/// The position of a view of sys or INFORMATION_SCHEMA, or nothing.
std::optional<std::size_t> FindSystemView(const ObjectName& name);
std::vector<ObjectName> SystemViewNames();

/// Fills a temporary table with the view's rows as they are now and returns it.
Relation FillSystemView(std::size_t view, Session& session, DatabaseLink& link);

// The views of the two schemas, in files of their own.
std::vector<SystemView> SysViews();
std::vector<SystemView> InformationSchemaViews();

}  // namespace sandbox
