#pragma once

#include <string>

#include "sandbox/tds/wire_type.h"
#include "sandbox/values/types.h"

namespace sandbox::tds {

/// The value that a wire value's bytes, without their length, stand for. Throws ProtocolError.
Value DecodeValue(const WireType& type, std::string body);

}  // namespace sandbox::tds
