#pragma once

#include <cstdint>
#include <optional>

namespace sandbox::tds {

/// The protocol versions that differ for this server, in their order.
enum class ProtocolVersion { V71, V72, V73, V74 };

/// The version that serves a client asking for `login_version`; none below 7.1.
constexpr std::optional<ProtocolVersion> NegotiateVersion(std::uint32_t login_version) {
  switch (login_version >> 24) {
    case 0x71:
      return ProtocolVersion::V71;
    case 0x72:
      return ProtocolVersion::V72;
    case 0x73:
      return ProtocolVersion::V73;
    default:
      if (login_version >> 24 < 0x71) return std::nullopt;
      return ProtocolVersion::V74;
  }
}

/// As the login acknowledgement names it.
constexpr std::uint32_t AcknowledgedVersion(ProtocolVersion version) {
  constexpr std::uint32_t kNames[] = {0x71000001, 0x72090002, 0x730B0003, 0x74000004};
  return kNames[static_cast<int>(version)];
}

}  // namespace sandbox::tds
