#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

namespace sandbox::tds {

/// Collects the little-endian fields of a reply.
class ByteWriter {
 public:
  template <typename T>
  void Write(T value) {
    static_assert(std::is_trivially_copyable_v<T>);
    bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
  }
  void U8(std::uint8_t value) { bytes_.push_back(static_cast<char>(value)); }
  void U16(std::uint16_t value) { Write(value); }
  void U32(std::uint32_t value) { Write(value); }
  void U64(std::uint64_t value) { Write(value); }
  void U32BigEndian(std::uint32_t value) { Write(__builtin_bswap32(value)); }
  void Raw(std::string_view bytes) { bytes_.append(bytes); }
  void Fill(std::size_t count, char byte) { bytes_.append(count, byte); }

  /// Overwrites a field that was written at `position` before its value was known.
  template <typename T>
  void Patch(std::size_t position, T value) {
    std::memcpy(bytes_.data() + position, &value, sizeof value);
  }

  std::size_t size() const { return bytes_.size(); }
  std::string& bytes() { return bytes_; }
  const std::string& bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

}  // namespace sandbox::tds
