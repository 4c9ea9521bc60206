#include <gtest/gtest.h>

#include "sandbox/tds/login.h"
#include "sandbox/tds/rpc_request.h"
#include "sandbox/tds/tokens.h"
#include "sandbox/tds/type_decoder.h"
#include "sandbox/tds/value_encoder.h"
#include "tests/sandbox/tds/sample_values.h"
#include "tests/sandbox/tds/wire_client.h"

namespace sandbox::tds {

namespace {

/// A call with every sample value as a parameter.
std::string CallWithEverything() {
  ByteWriter out;
  out.Raw(BatchRecord(""));
  WriteText(out, "sp_everything");
  out.U16(0);
  for (const SampleValue& sample : SampleValues()) {
    WireType type = MakeWireType(sample.type);
    // text stands otherwise in a parameter, and no client sends a variant
    if (type.shape == WireShape::Long || type.shape == WireShape::Variant) continue;
    WriteShortText(out, "@" + sample.name);
    out.U8(0);
    WriteTypeInfo(out, type);
    ValueEncoder(type).Write(out, sample.value);
  }
  return out.bytes();
}

std::vector<RpcRequest> ReadCalls(std::string_view bytes) {
  ByteReader reader(bytes);
  return ReadRpcRequests(reader);
}

/// Parses `bytes` in every way; only ProtocolError may come of it.
void ParseAll(std::string_view bytes) {
  const auto guarded = [](const auto& parse) {
    try {
      parse();
    } catch (const ProtocolError&) {
    }
  };
  guarded([&] { ParsePreLogin(bytes); });
  guarded([&] { ParseLogin(bytes); });
  guarded([&] { ReadCalls(bytes); });
}

TEST(HostileParser, AGoodCallIsReadWhole) {
  std::vector<RpcRequest> calls = ReadCalls(CallWithEverything());
  ASSERT_EQ(calls.size(), 1U);
  EXPECT_EQ(calls[0].procedure, "sp_everything");
  std::size_t next = 0;
  for (const SampleValue& sample : SampleValues()) {
    const WireShape shape = MakeWireType(sample.type).shape;
    if (shape == WireShape::Long || shape == WireShape::Variant) continue;
    ASSERT_LT(next, calls[0].parameters.size());
    EXPECT_EQ(calls[0].parameters[next].name, "@" + sample.name);
    EXPECT_TRUE(SameValue(calls[0].parameters[next].value, sample.value)) << sample.name;
    ++next;
  }
}

TEST(HostileParser, EveryTruncationIsAProtocolError) {
  const std::string call = CallWithEverything();
  for (std::size_t size = 1; size < call.size(); ++size) ParseAll(call.substr(0, size));
  const std::string login = LoginRecord({});
  for (std::size_t size = 0; size < 94; ++size) {
    EXPECT_THROW(ParseLogin(login.substr(0, size)), ProtocolError);
  }
}

TEST(HostileParser, ClaimedLengthsAllocateNothing) {
  ByteWriter out;
  out.U8(0xE7);  // nvarchar(max)
  out.U16(0xFFFF);
  out.Raw(kCollation);
  out.U64(0xFFFFFFFFFFFFFFFE);
  out.U32(0x7FFFFFFF);
  out.Raw("short");
  ByteReader reader(out.bytes());
  WireType type = ReadTypeInfo(reader);
  EXPECT_THROW(ReadValue(reader, type, LongForm::InParameter), ProtocolError);
}

TEST(ParameterNames, AreFoundWhateverTheirTypes) {
  EXPECT_EQ(DeclaredParameterNames("@id int, @price decimal(9, 2) output,@n\tnvarchar(max)"),
            (std::vector<std::string>{"@id", "@price", "@n"}));
  EXPECT_TRUE(DeclaredParameterNames("").empty());
}

}  // namespace
}  // namespace sandbox::tds
