#include "sandbox/tds/tokens.h"

#include <algorithm>
#include <string>

#include "sandbox/text/utf16.h"

namespace sandbox::tds {

namespace {

constexpr int kInformation = 10;

/// Starts a token with a 16-bit length, which its end fills in.
class SizedToken {
 public:
  SizedToken(ByteWriter& out, Token token) : out_(out) {
    out_.U8(static_cast<std::uint8_t>(token));
    start_ = out_.size();
    out_.U16(0);
  }
  ~SizedToken() {
    out_.Patch(start_, static_cast<std::uint16_t>(out_.size() - start_ - sizeof(std::uint16_t)));
  }
  SizedToken(const SizedToken&) = delete;
  SizedToken& operator=(const SizedToken&) = delete;

 private:
  ByteWriter& out_;
  std::size_t start_ = 0;
};

std::string CutUtf16(std::string_view utf8, std::size_t most_characters) {
  std::string text;
  AppendUtf16(utf8, text);
  text.resize(std::min(text.size(), 2 * most_characters));
  return text;
}

}  // namespace

void WriteShortText(ByteWriter& out, std::string_view utf8) {
  std::string text = CutUtf16(utf8, 255);
  out.U8(static_cast<std::uint8_t>(text.size() / 2));
  out.Raw(text);
}

void WriteText(ByteWriter& out, std::string_view utf8) {
  // A token's own length has 16 bits too, so the longest text leaves room for its other fields.
  std::string text = CutUtf16(utf8, 30000);
  out.U16(static_cast<std::uint16_t>(text.size() / 2));
  out.Raw(text);
}

void WriteMessage(ByteWriter& out, const ServerMessage& message) {
  SizedToken token(out, message.severity > kInformation ? Token::Error : Token::Info);
  out.Write(message.number);
  out.U8(static_cast<std::uint8_t>(message.state));
  // Severity 10 reaches clients as 0.
  out.U8(static_cast<std::uint8_t>(message.severity == kInformation ? 0 : message.severity));
  WriteText(out, message.text);
  WriteShortText(out, kServerName);
  WriteShortText(out, message.procedure);
  out.U32(static_cast<std::uint32_t>(message.line));
}

void WriteEnvChange(ByteWriter& out, EnvChange what, std::string_view now,
                    std::string_view before) {
  SizedToken token(out, Token::EnvChange);
  out.U8(static_cast<std::uint8_t>(what));
  WriteShortText(out, now);
  WriteShortText(out, before);
}

void WriteEnvChangeBytes(ByteWriter& out, EnvChange what, std::string_view now,
                         std::string_view before) {
  SizedToken token(out, Token::EnvChange);
  out.U8(static_cast<std::uint8_t>(what));
  for (std::string_view bytes : {now, before}) {
    out.U8(static_cast<std::uint8_t>(bytes.size()));
    out.Raw(bytes);
  }
}

void WriteLoginAck(ByteWriter& out, std::uint32_t version) {
  constexpr std::uint8_t kTransactSql = 1;
  constexpr std::uint32_t kServerVersion = 0x0F0007D0;  // 15.0.2000
  using std::string_view_literals::operator""sv;
  SizedToken token(out, Token::LoginAck);
  out.U8(kTransactSql);
  out.U32BigEndian(version);
  WriteShortText(out, "Microsoft SQL Server\0\0"sv);
  out.U32BigEndian(kServerVersion);
}

void WriteDone(ByteWriter& out, Token token, std::uint16_t status, std::uint64_t row_count) {
  constexpr std::uint16_t kNoCommand = 0;
  out.U8(static_cast<std::uint8_t>(token));
  out.U16(status);
  out.U16(kNoCommand);
  out.U64(row_count);
}

void WriteReturnStatus(ByteWriter& out, std::int32_t status) {
  out.U8(static_cast<std::uint8_t>(Token::ReturnStatus));
  out.Write(status);
}

}  // namespace sandbox::tds
