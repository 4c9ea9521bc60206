#pragma once

#include "sandbox/tds/byte_reader.h"
#include "sandbox/tds/wire_type.h"
#include "sandbox/values/types.h"

namespace sandbox::tds {

/// Reads the type of a parameter or bulk column. Throws ProtocolError for unknown types and
/// measures out of range.
WireType ReadTypeInfo(ByteReader& reader);

/// The declared type that a client's wire type stands for.
TypeInfo DeclaredType(const WireType& type);

/// text, ntext and image stand behind a text pointer in rows, bare in parameters.
enum class LongForm { InRow, InParameter };

/// Throws ProtocolError when the value does not fit its type.
Value ReadValue(ByteReader& reader, const WireType& type, LongForm long_form);

}  // namespace sandbox::tds
