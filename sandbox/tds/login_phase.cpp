#include "sandbox/tds/login_phase.h"

#include <fmt/format.h>
#include <strings.h>

#include <algorithm>
#include <vector>

#include "sandbox/tds/login.h"
#include "sandbox/tds/tokens.h"

namespace sandbox::tds {

namespace {

constexpr std::size_t kLongestHandshake = 128 * 1024;
// Protocol versions 7.3 and 7.4, which are alike in all that this server sends.
constexpr std::uint32_t kOldestVersion = 0x73000000;
constexpr std::uint32_t kNewestVersion = 0x74000004;
constexpr char kMaster[] = "master";
constexpr char kLanguage[] = "us_english";

ServerMessage LoginFailed(const std::string& user) {
  return {.number = 18456,
          .severity = 14,
          .text = fmt::format("Login failed for user '{}'.", user),
          .procedure = {}};
}

ServerMessage NoSuchDatabase(const std::string& database) {
  return {.number = 4060,
          .severity = 11,
          .text = fmt::format(
              "Cannot open database \"{}\" requested by the login. The login failed.", database),
          .procedure = {}};
}

ServerMessage NoIntegratedLogin() {
  return {.number = 18452,
          .severity = 14,
          .text =
              "Login failed. The login is from an untrusted domain and cannot be used with "
              "Integrated authentication.",
          .procedure = {}};
}

ServerMessage ProtocolTooOld() {
  return {.number = 17803,
          .severity = 20,
          .text = "The client's protocol version is not supported; 7.3 is the oldest that is.",
          .procedure = {}};
}

/// Reads the handshake's messages up to the login record. False when the client left.
bool ReadLogin(PacketStream& stream, Login& login) {
  auto type = stream.NextMessage();
  if (type == MessageType::PreLogin) {
    PreLogin prelogin = ParsePreLogin(ByteReader(stream).Rest(kLongestHandshake));
    WritePreLoginReply(stream.Out());
    stream.EndReply();
    if (prelogin.requires_encryption) {
      throw ProtocolError("the client requires encryption, which this server does not have");
    }
    type = stream.NextMessage();
  }
  if (!type) return false;
  if (type != MessageType::Login7) throw ProtocolError("a login record was expected");
  login = ParseLogin(ByteReader(stream).Rest(kLongestHandshake));
  return true;
}

bool Matches(const Login& login, const Credentials& credentials) {
  return strcasecmp(login.user.c_str(), credentials.user.c_str()) == 0 &&
         login.password == credentials.password;
}

/// Opens the session; on failure returns what to tell the client.
std::vector<ServerMessage> Admit(ClientSession& client, const Login& login, Engine& engine,
                                 const Credentials& credentials) {
  if (login.version < kOldestVersion) return {ProtocolTooOld()};
  if (login.integrated) return {NoIntegratedLogin()};
  if (!Matches(login, credentials) && !engine.MayLogIn(login.user, login.password))
    return {LoginFailed(login.user)};
  client.engine = engine.OpenSession(login.user);
  const std::string database = login.database.empty() ? kMaster : login.database;
  if (client.engine->UseDatabase(database)) return {};
  return {NoSuchDatabase(database), LoginFailed(login.user)};
}

void Refuse(ClientSession& client, const std::vector<ServerMessage>& reasons) {
  ByteWriter& out = client.stream.Out();
  for (const ServerMessage& reason : reasons) WriteMessage(out, reason);
  WriteDone(out, Token::Done, kDoneError, 0);
  client.stream.EndReply();
}

ServerMessage Notice(int number, int state, std::string text) {
  return {
      .number = number, .state = state, .severity = 0, .text = std::move(text), .procedure = {}};
}

void Welcome(ClientSession& client, const Login& login) {
  ByteWriter& out = client.stream.Out();
  const std::string& database = client.engine->Database();
  WriteEnvChange(out, EnvChange::Database, database, kMaster);
  WriteMessage(out, Notice(5701, 2, fmt::format("Changed database context to '{}'.", database)));
  WriteEnvChangeBytes(out, EnvChange::Collation, kCollation, "");
  WriteEnvChange(out, EnvChange::Language, kLanguage, "");
  WriteMessage(out, Notice(5703, 1, fmt::format("Changed language setting to {}.", kLanguage)));
  WriteLoginAck(out, std::min(login.version, kNewestVersion));
  std::size_t packet_size =
      login.packet_size == 0
          ? kDefaultPacketSize
          : std::clamp<std::size_t>(login.packet_size, kSmallestPacketSize, kLargestPacketSize);
  WriteEnvChange(out, EnvChange::PacketSize, fmt::format("{}", packet_size),
                 fmt::format("{}", kDefaultPacketSize));
  WriteDone(out, Token::Done, kDoneFinal, 0);
  client.stream.EndReply();
  client.stream.SetPacketSize(packet_size);
}

}  // namespace

bool LogIn(ClientSession& client, Engine& engine, const Credentials& credentials) {
  Login login;
  if (!ReadLogin(client.stream, login)) return false;
  std::vector<ServerMessage> reasons = Admit(client, login, engine, credentials);
  if (!reasons.empty()) {
    Refuse(client, reasons);
    return false;
  }
  Welcome(client, login);
  return true;
}

}  // namespace sandbox::tds
