#include "tests/platform/ado/odbc/login_record.h"

#include <fmt/format.h>
#include <sys/socket.h>

#include <utility>

#include "platform/ado/odbc/utf16.h"
#include "tests/support/listener.h"

namespace dorvane::test {

namespace {

constexpr unsigned char kLogin = 0x10;

std::size_t Byte(const std::string& bytes, std::size_t position) {
  return static_cast<unsigned char>(bytes.at(position));
}

/// The type of the next packet and its content; empty at the end.
std::pair<std::size_t, std::string> ReceivePacket(int socket) {
  const std::string header = Receive(socket, 8);
  if (header.empty()) return {};
  return {Byte(header, 0), Receive(socket, Byte(header, 2) * 256 + Byte(header, 3) - 8)};
}

/// A prelogin answer: version 15, no encryption.
void AnswerPrelogin(int socket) {
  const char answer[] =
      "\x04\x01\x00\x1A\x00\x00\x01\x00"
      "\x00\x00\x0B\x00\x06\x01\x00\x11\x00\x01\xFF"
      "\x0F\x00\x00\x00\x00\x00\x02";
  send(socket, answer, sizeof answer - 1, MSG_NOSIGNAL);
}

/// The text that the offset and length at `position` of a login record point to.
std::u16string FieldAt(const std::string& record, std::size_t position) {
  const std::size_t offset = Byte(record, position) + Byte(record, position + 1) * 256;
  const std::size_t length = Byte(record, position + 2) + Byte(record, position + 3) * 256;
  std::u16string text;
  for (std::size_t i = offset; i < offset + 2 * length; i += 2) {
    text += static_cast<char16_t>(Byte(record, i) + Byte(record, i + 1) * 256);
  }
  return text;
}

/// Passwords travel with the halves of every byte exchanged and some bits inverted.
std::u16string Unscramble(std::u16string text) {
  for (char16_t& unit : text) {
    const unsigned inverted = unit ^ 0xA5A5U;
    unit = static_cast<char16_t>(((inverted << 4) & 0xF0F0U) | ((inverted >> 4) & 0x0F0FU));
  }
  return text;
}

}  // namespace

LoginRecord ReceiveLogin(int socket) {
  while (true) {
    const auto [type, content] = ReceivePacket(socket);
    if (content.empty()) return {};
    if (type != kLogin) {
      AnswerPrelogin(socket);
      continue;
    }
    LoginRecord login;
    for (std::size_t i = 4; i < 8; ++i)
      login.tds_version += fmt::format("{:02x}", Byte(content, i));
    login.user = ado::odbc::ToUtf8(FieldAt(content, 40));
    login.password = ado::odbc::ToUtf8(Unscramble(FieldAt(content, 44)));
    login.language = ado::odbc::ToUtf8(FieldAt(content, 64));
    login.database = ado::odbc::ToUtf8(FieldAt(content, 68));
    return login;
  }
}

}  // namespace dorvane::test
