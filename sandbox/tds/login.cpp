#include "sandbox/tds/login.h"

#include <algorithm>

#include "sandbox/tds/byte_reader.h"
#include "sandbox/text/utf16.h"

namespace sandbox::tds {

namespace {

enum PreLoginOption : std::uint8_t {
  kVersion = 0,
  kEncryption = 1,
  kInstance = 2,
  kMultipleResults = 4,
  kEndOfOptions = 0xFF,
};

enum EncryptionMode : std::uint8_t { kEncryptOn = 1, kEncryptRequired = 3 };

std::string_view Slice(std::string_view message, std::size_t offset, std::size_t length) {
  if (offset > message.size() || length > message.size() - offset) {
    throw ProtocolError("a login field lies outside its message");
  }
  return message.substr(offset, length);
}

std::uint16_t BigEndian16(ByteReader& reader) {
  return __builtin_bswap16(reader.U16());
}

// Positions in the fixed part of the login record.
constexpr std::size_t kVersionAt = 4;
constexpr std::size_t kPacketSizeAt = 8;
constexpr std::size_t kOptionFlags2At = 25;
constexpr std::size_t kUserAt = 40;
constexpr std::size_t kPasswordAt = 44;
constexpr std::size_t kLanguageAt = 64;
constexpr std::size_t kDatabaseAt = 68;
constexpr std::uint8_t kIntegratedSecurity = 0x80;

template <typename T>
T FieldAt(std::string_view message, std::size_t at) {
  return ByteReader(Slice(message, at, sizeof(T))).Read<T>();
}

/// A variable field: its offset and its length in characters stand at `at`.
std::string_view TextField(std::string_view message, std::size_t at) {
  auto offset = FieldAt<std::uint16_t>(message, at);
  auto characters = FieldAt<std::uint16_t>(message, at + 2);
  return characters == 0 ? std::string_view() : Slice(message, offset, 2U * characters);
}

std::string UnscramblePassword(std::string_view scrambled) {
  std::string plain(scrambled);
  for (char& c : plain) {
    auto byte = static_cast<std::uint8_t>(static_cast<std::uint8_t>(c) ^ 0xA5);
    c = static_cast<char>(byte << 4 | byte >> 4);
  }
  return plain;
}

}  // namespace

PreLogin ParsePreLogin(std::string_view message) {
  PreLogin result;
  ByteReader options(message);
  for (std::uint8_t option = options.U8(); option != kEndOfOptions; option = options.U8()) {
    std::size_t offset = BigEndian16(options);
    std::size_t length = BigEndian16(options);
    std::string_view value = Slice(message, offset, length);
    if (option != kEncryption || value.empty()) continue;
    auto mode = static_cast<std::uint8_t>(value.front());
    result.requires_encryption = mode == kEncryptOn || mode == kEncryptRequired;
  }
  return result;
}

void WritePreLoginReply(ByteWriter& out) {
  struct Option {
    PreLoginOption option;
    std::string_view value;
  };
  using std::string_view_literals::operator""sv;
  constexpr Option kOptions[] = {{kVersion, "\x0F\x00\x07\xD0\x00\x00"sv},
                                 {kEncryption, "\x02"sv},
                                 {kInstance, "\x00"sv},
                                 {kMultipleResults, "\x00"sv}};
  constexpr std::size_t kOptionSize = 5;
  std::size_t offset = std::size(kOptions) * kOptionSize + 1;
  for (const Option& option : kOptions) {
    out.U8(option.option);
    out.U16(__builtin_bswap16(static_cast<std::uint16_t>(offset)));
    out.U16(__builtin_bswap16(static_cast<std::uint16_t>(option.value.size())));
    offset += option.value.size();
  }
  out.U8(kEndOfOptions);
  for (const Option& option : kOptions) out.Raw(option.value);
}

Login ParseLogin(std::string_view message) {
  Login login;
  login.version = FieldAt<std::uint32_t>(message, kVersionAt);
  login.packet_size = FieldAt<std::uint32_t>(message, kPacketSizeAt);
  login.integrated = FieldAt<std::uint8_t>(message, kOptionFlags2At) & kIntegratedSecurity;
  login.user = Utf16ToUtf8(TextField(message, kUserAt));
  login.password = Utf16ToUtf8(UnscramblePassword(TextField(message, kPasswordAt)));
  login.database = Utf16ToUtf8(TextField(message, kDatabaseAt));
  login.language = Utf16ToUtf8(TextField(message, kLanguageAt));
  return login;
}

}  // namespace sandbox::tds
