#pragma once

#include <string>
#include <utility>
#include <vector>

#include "sandbox/parser/ast.h"

namespace sandbox {

class Session;

/// A name as procedures and functions take it: "dbo.[my table]".
ObjectName ParsedName(const std::string& text);

/// The functions of the same names; NULL for what there is not.
std::pair<Value, TypeInfo> ObjectIdOf(Session& session, const std::string& name,
                                      const std::string& kind);
std::pair<Value, TypeInfo> ObjectNameOf(Session& session, const std::vector<Value>& args);
std::pair<Value, TypeInfo> ObjectSchemaNameOf(Session& session, const std::vector<Value>& args);
std::pair<Value, TypeInfo> SchemaNameOf(Session& session, const std::vector<Value>& args);
std::pair<Value, TypeInfo> SchemaIdOf(Session& session, const std::vector<Value>& args);
std::pair<Value, TypeInfo> ColumnNameOf(Session& session, const std::vector<Value>& args);
std::pair<Value, TypeInfo> ColumnPropertyOf(Session& session, const std::vector<Value>& args);
std::pair<Value, TypeInfo> ObjectPropertyOf(Session& session, const std::vector<Value>& args);

}  // namespace sandbox
