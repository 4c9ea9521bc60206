#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

namespace sandbox::tds {

/// The client broke the protocol; its connection cannot go on.
class ProtocolError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Delivers a message piece by piece as its packets arrive.
class ByteSource {
 public:
  virtual ~ByteSource() = default;
  /// The next piece, valid until the next call; empty at the end of the message.
  virtual std::string_view NextPiece() = 0;
};

/// Reads little-endian fields of a message. Every read past the end throws ProtocolError, and
/// memory grows only with bytes that really arrived, whatever length the client claims.
class ByteReader {
 public:
  explicit ByteReader(std::string_view bytes) : piece_(bytes) {}
  explicit ByteReader(ByteSource& source) : source_(&source) {}

  template <typename T>
  T Read() {
    static_assert(std::is_trivially_copyable_v<T>);
    T value;
    if (piece_.size() >= sizeof value) {
      std::memcpy(&value, piece_.data(), sizeof value);
      piece_.remove_prefix(sizeof value);
      return value;
    }
    std::string bytes = Bytes(sizeof value);
    std::memcpy(&value, bytes.data(), sizeof value);
    return value;
  }
  std::uint8_t U8() { return Read<std::uint8_t>(); }
  std::uint16_t U16() { return Read<std::uint16_t>(); }
  std::uint32_t U32() { return Read<std::uint32_t>(); }
  std::uint64_t U64() { return Read<std::uint64_t>(); }

  /// The next byte, which stays unread.
  std::uint8_t Peek() {
    Require();
    return static_cast<std::uint8_t>(piece_.front());
  }

  bool AtEnd() { return !Refill(); }

  void Append(std::size_t count, std::string& out) {
    while (count > 0) {
      Require();
      std::string_view part = piece_.substr(0, count);
      out.append(part);
      piece_.remove_prefix(part.size());
      count -= part.size();
    }
  }
  std::string Bytes(std::size_t count) {
    std::string out;
    Append(count, out);
    return out;
  }
  void Skip(std::size_t count) {
    while (count > 0) {
      Require();
      std::size_t part = std::min(count, piece_.size());
      piece_.remove_prefix(part);
      count -= part;
    }
  }
  /// Hands all that is left of the message to `take`, piece by piece. Throws ProtocolError beyond
  /// `limit` bytes.
  template <typename Take>
  void EachPiece(std::size_t limit, Take take) {
    for (std::size_t taken = 0; Refill(); piece_ = {}) {
      taken += piece_.size();
      if (taken > limit) throw ProtocolError("the message is too long");
      take(piece_);
    }
  }
  /// The same in one string.
  std::string Rest(std::size_t limit) {
    std::string out;
    EachPiece(limit, [&out](std::string_view piece) { out.append(piece); });
    return out;
  }

 private:
  bool Refill() {
    if (piece_.empty() && source_ != nullptr) piece_ = source_->NextPiece();
    return !piece_.empty();
  }
  void Require() {
    if (!Refill()) throw ProtocolError("the message ends too early");
  }

  std::string_view piece_;
  ByteSource* source_ = nullptr;
};

}  // namespace sandbox::tds
