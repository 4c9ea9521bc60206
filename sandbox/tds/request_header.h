#pragma once

#include "sandbox/tds/byte_reader.h"
#include "sandbox/tds/protocol_version.h"

namespace sandbox::tds {

/// Skips the headers (transaction descriptor, query notification) that start the requests of
/// clients from 7.2 on. Throws ProtocolError.
inline void SkipAllHeaders(ByteReader& reader, ProtocolVersion version) {
  if (version < ProtocolVersion::V72) return;
  constexpr std::uint32_t kOwnSize = 4;
  std::uint32_t size = reader.U32();
  if (size < kOwnSize) throw ProtocolError("a request's headers are too short");
  reader.Skip(size - kOwnSize);
}

}  // namespace sandbox::tds
