#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "sandbox/engine/engine.h"
#include "sandbox/tds/byte_reader.h"

namespace sandbox::tds {

/// A remote procedure call as the client sent it. Procedures called by number have their name.
struct RpcRequest {
  std::string procedure;
  std::vector<Parameter> parameters;
};

/// All calls of one message, in their order. Throws ProtocolError.
std::vector<RpcRequest> ReadRpcRequests(ByteReader& reader);

/// The names in a parameter list such as "@id int, @price decimal(9, 2) output", in their order.
std::vector<std::string> DeclaredParameterNames(std::string_view declarations);

}  // namespace sandbox::tds
