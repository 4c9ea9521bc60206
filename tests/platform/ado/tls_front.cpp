#include "tests/platform/ado/tls_front.h"

#include <openssl/ssl.h>
#include <sys/socket.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <string>

#include "tests/support/listener.h"
#include "tests/support/relay.h"

namespace dorvane::test {

namespace {

constexpr char kPrelogin = 0x12;

std::string ReceivePacket(int socket) {
  const std::string header = Receive(socket, 8);
  if (header.empty()) return {};
  const std::size_t size =
      static_cast<unsigned char>(header[2]) * 256U + static_cast<unsigned char>(header[3]);
  return Receive(socket, size - 8);
}

void SendPacket(int socket, char type, const std::string& content) {
  const std::size_t size = content.size() + 8;
  const std::string packet =
      std::string{type, 1, static_cast<char>(size / 256), static_cast<char>(size % 256), 0, 0,
                  1,    0} +
      content;
  send(socket, packet.data(), packet.size(), MSG_NOSIGNAL);
}

/// TLS over bytes in memory: what came is given to it, what it has to send is taken from it.
class Tls {
 public:
  explicit Tls(const Certificate& certificate) : context_(SSL_CTX_new(TLS_server_method())) {
    const bool usable =
        SSL_CTX_use_certificate_chain_file(context_.get(), certificate.certificate.c_str()) == 1 &&
        SSL_CTX_use_PrivateKey_file(context_.get(), certificate.key.c_str(), SSL_FILETYPE_PEM) == 1;
    if (!usable) throw std::runtime_error("the certificate cannot be used");
    // Behind this one's handshake no packet of the server's own follows.
    SSL_CTX_set_max_proto_version(context_.get(), TLS1_2_VERSION);
    session_.reset(SSL_new(context_.get()));
    SSL_set_bio(session_.get(), BIO_new(BIO_s_mem()), BIO_new(BIO_s_mem()));
    SSL_set_accept_state(session_.get());
  }

  void Give(const std::string& bytes) {
    BIO_write(SSL_get_rbio(session_.get()), bytes.data(), static_cast<int>(bytes.size()));
  }
  std::string Take() {
    std::string bytes(BIO_ctrl_pending(SSL_get_wbio(session_.get())), '\0');
    BIO_read(SSL_get_wbio(session_.get()), bytes.data(), static_cast<int>(bytes.size()));
    return bytes;
  }
  /// Whether it is over.
  bool Handshake() { return SSL_do_handshake(session_.get()) == 1; }
  std::string Decrypted() {
    std::string text;
    std::array<char, 16384> part{};
    int count = 0;
    while ((count = SSL_read(session_.get(), part.data(), part.size())) > 0) {
      text.append(part.data(), static_cast<std::size_t>(count));
    }
    return text;
  }
  void Encrypt(const std::string& text) {
    SSL_write(session_.get(), text.data(), static_cast<int>(text.size()));
  }

 private:
  std::unique_ptr<SSL_CTX, decltype([](SSL_CTX* context) { SSL_CTX_free(context); })> context_;
  std::unique_ptr<SSL, decltype([](SSL* session) { SSL_free(session); })> session_;
};

bool ShakeHands(int client, Tls& tls) {
  if (ReceivePacket(client).empty()) return false;
  SendPacket(client, 0x04,
             std::string("\x00\x00\x0B\x00\x06\x01\x00\x11\x00\x01\xFF"
                         "\x0F\x00\x00\x00\x00\x00\x01",
                         18));  // version 15, encryption on
  bool done = false;
  while (!done) {
    const std::string packet = ReceivePacket(client);
    if (packet.empty()) return false;
    tls.Give(packet);
    done = tls.Handshake();
    const std::string answer = tls.Take();
    if (!answer.empty()) SendPacket(client, kPrelogin, answer);
  }
  return true;
}

}  // namespace

void ServeWithTls(int client, int server_port, const Certificate& certificate) {
  Tls tls(certificate);
  if (!ShakeHands(client, tls)) return;
  Relay(
      client, server_port,
      [&](std::string& portion) {
        tls.Give(portion);
        portion = tls.Decrypted();
      },
      [&](std::string& portion) {
        tls.Encrypt(portion);
        portion = tls.Take();
      });
}

}  // namespace dorvane::test
