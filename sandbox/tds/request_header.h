#pragma once

#include "sandbox/tds/byte_reader.h"

namespace sandbox::tds {

/// Skips the headers (transaction descriptor, query notification) that requests start with. Throws
/// ProtocolError.
inline void SkipAllHeaders(ByteReader& reader) {
  constexpr std::uint32_t kOwnSize = 4;
  std::uint32_t size = reader.U32();
  if (size < kOwnSize) throw ProtocolError("a request's headers are too short");
  reader.Skip(size - kOwnSize);
}

}  // namespace sandbox::tds
