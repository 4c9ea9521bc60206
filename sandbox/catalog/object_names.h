#pragma once

#include <string>
#include <vector>

#include "sandbox/parser/ast.h"

namespace sandbox {

class Session;

/// A name as procedures and functions take it: "dbo.[my table]".
ObjectName ParsedName(const std::string& text);

/// The functions of the same names; NULL for what there is not.
Value ObjectIdOf(Session& session, const std::vector<Value>& args);
Value ObjectNameOf(Session& session, const std::vector<Value>& args);
Value ObjectSchemaNameOf(Session& session, const std::vector<Value>& args);
Value SchemaNameOf(Session& session, const std::vector<Value>& args);

}  // namespace sandbox
