#pragma once

#include <cstdint>
#include <string_view>

#include "sandbox/engine/engine.h"
#include "sandbox/tds/byte_writer.h"

namespace sandbox::tds {

enum class Token : std::uint8_t {
  ReturnStatus = 0x79,
  ColMetadata = 0x81,
  Error = 0xAA,
  Info = 0xAB,
  ReturnValue = 0xAC,
  LoginAck = 0xAD,
  Row = 0xD1,
  EnvChange = 0xE3,
  Done = 0xFD,
  DoneProc = 0xFE,
  DoneInProc = 0xFF,
};

enum class EnvChange : std::uint8_t {
  Database = 1,
  Language = 2,
  PacketSize = 4,
  Collation = 7,
  BeginTransaction = 8,
  CommitTransaction = 9,
  RollbackTransaction = 10,
};

enum DoneStatus : std::uint16_t {
  kDoneFinal = 0x00,
  kDoneMore = 0x01,
  kDoneError = 0x02,
  kDoneCount = 0x10,
  kDoneAttention = 0x20,
};

constexpr char kServerName[] = "SANDBOX";

/// Latin1_General with case ignored, code page 1252: LCID, flags, and sort order 52.
constexpr std::string_view kCollation{"\x09\x04\xD0\x00\x34", 5};

/// A length of one byte (two bytes) in characters, then UTF-16. Longer text is cut.
void WriteShortText(ByteWriter& out, std::string_view utf8);
void WriteText(ByteWriter& out, std::string_view utf8);

void WriteMessage(ByteWriter& out, const ServerMessage& message);
/// Values as text, for the database, the language and the packet size.
void WriteEnvChange(ByteWriter& out, EnvChange what, std::string_view now, std::string_view before);
/// Values as bytes, for the collation and transaction descriptors.
void WriteEnvChangeBytes(ByteWriter& out, EnvChange what, std::string_view now,
                         std::string_view before);
void WriteLoginAck(ByteWriter& out, std::uint32_t version);
void WriteDone(ByteWriter& out, Token token, std::uint16_t status, std::uint64_t row_count);
void WriteReturnStatus(ByteWriter& out, std::int32_t status);

}  // namespace sandbox::tds
