#include <gtest/gtest.h>

#include "sandbox/tds/server.h"
#include "tests/fuzz/mutator.h"
#include "tests/sandbox/tds/fake_engine.h"
#include "tests/sandbox/tds/wire_client.h"

namespace sandbox::tds {

namespace {

std::string Handshake() {
  return Packet(MessageType::PreLogin, PreLoginRecord(2)) +
         Packet(MessageType::Login7, LoginRecord({}));
}

/// A batch, a call and a bulk load.
std::string Requests() {
  ByteWriter call;
  call.Raw(BatchRecord(""));
  call.U16(0xFFFF);
  call.U16(10);  // sp_executesql
  call.U16(0);
  call.U16(0);    // no name, no flags
  call.U8(0xE7);  // nvarchar
  call.U16(100);
  call.Raw(kCollation);
  std::string statement = Utf16("select 1");
  call.U16(static_cast<std::uint16_t>(statement.size()));
  call.Raw(statement);

  ByteWriter bulk;
  bulk.U8(0x81);
  bulk.U16(1);
  bulk.U32(0);
  bulk.U16(0);
  bulk.U8(0x26);
  bulk.U8(4);
  bulk.U8(1);
  bulk.Raw(Utf16("n"));
  bulk.U8(0xD1);
  bulk.U8(4);
  bulk.U32(5);
  bulk.U8(0xFD);
  bulk.Fill(12, 0);

  return Packet(MessageType::SqlBatch, BatchRecord("select 1")) +
         Packet(MessageType::Rpc, call.bytes()) +
         Packet(MessageType::SqlBatch, BatchRecord("insert bulk t (n int)")) +
         Packet(MessageType::BulkLoad, bulk.bytes());
}

TEST(HostileSocket, BrokenConversationsEndOnlyThemselves) {
  FakeEngine engine;
  engine.bulk_columns = {{.name = "n", .type = {SqlType::Int}}};
  Server server(engine, {"sa", "secret"}, 0);
  const std::string handshake = Handshake();
  const std::string requests = Requests();
  {
    WireClient client(server.Port());
    client.SendBytes(handshake + requests);
    for (int reply = 0; reply < 6; ++reply) EXPECT_FALSE(client.Receive().empty());
  }
  ASSERT_EQ(engine.BulkRows().size(), 1U);

  dorvane::fuzz::Mutator late({requests});
  dorvane::fuzz::Mutator early({handshake + requests});
  for (int round = 0; round < 400; ++round) {
    WireClient client(server.Port());
    client.SendBytes(round % 4 != 0 ? handshake + late.Next() : early.Next());
    client.StopSending();
    EXPECT_TRUE(client.ClosedByServer());
  }
  for (const char* nonsense :
       {"GET / HTTP/1.1\r\n\r\n", "\x16\x03\x01\x02\x00", "\x12\x01\x00\x00"}) {
    WireClient client(server.Port());
    client.SendBytes(nonsense);
  }

  WireClient client(server.Port());
  client.LogIn();
  client.SendBatch("select 1");
  EXPECT_EQ(FinalStatus(client.Receive()), kDoneFinal);
}

TEST(HostileSocket, ABrokenRequestIsAnsweredAndClosed) {
  FakeEngine engine;
  Server server(engine, {"sa", "secret"}, 0);
  WireClient client(server.Port());
  client.LogIn();
  client.Send(MessageType::BulkLoad, "rows nobody announced");
  EXPECT_TRUE(Contains(client.Receive(), Utf16("protocol stream is incorrect")));
  EXPECT_TRUE(client.ClosedByServer());
}

TEST(HostileSocket, TheServerEndsWithConnectionsOpenAndBusy) {
  FakeEngine engine;
  engine.batches["endless"] = [](EngineSession& session, ResultSink& sink) {
    sink.Columns({{.name = "n", .type = {SqlType::Int}}});
    while (!session.cancel) sink.Row(std::vector<Value>{std::int64_t{7}});
  };
  auto server = std::make_unique<Server>(engine, Credentials{"sa", "secret"}, 0);
  WireClient idle(server->Port());
  WireClient busy(server->Port());
  busy.LogIn();
  busy.SendBatch("endless");
  server.reset();
  EXPECT_TRUE(idle.ClosedByServer());
}

}  // namespace
}  // namespace sandbox::tds
