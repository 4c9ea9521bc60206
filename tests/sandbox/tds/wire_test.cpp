#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "sandbox/tds/server.h"
#include "tests/sandbox/tds/fake_engine.h"
#include "tests/sandbox/tds/wire_client.h"

namespace sandbox::tds {

namespace {

using namespace std::string_view_literals;

class Wire : public ::testing::Test {
 protected:
  Wire() {
    engine_.batches["wait"] = [](EngineSession& session, ResultSink& sink) {
      sink.Columns({{.name = "n", .type = {SqlType::Int}}});
      while (!session.cancel) std::this_thread::sleep_for(std::chrono::milliseconds(1));
      sink.Message({.number = 3617, .text = "too late to be seen", .procedure = {}});
    };
    engine_.batches["long"] = [](EngineSession&, ResultSink& sink) {
      sink.Columns({{.name = "t", .type = {SqlType::VarChar, -1}}});
      sink.Row(std::vector<Value>{std::string(100'000, 'x')});
      sink.Done(1);
    };
    engine_.batches["endless"] = [](EngineSession& session, ResultSink& sink) {
      sink.Columns({{.name = "n", .type = {SqlType::Int}}});
      const std::vector<Value> row = {std::int64_t{7}};
      while (!session.cancel) sink.Row(row);
    };
  }

  FakeEngine engine_;
  Server server_{engine_, {"sa", "secret"}, 0};
};

TEST_F(Wire, PacketsHaveTheNegotiatedSize) {
  for (std::size_t wanted : {512U, 4096U, 32767U}) {
    WireClient client(server_.Port());
    client.LogIn(static_cast<std::uint32_t>(wanted));
    client.SendBatch("long");
    std::string reply = client.Receive();
    EXPECT_EQ(FinalStatus(reply), kDoneCount);
    EXPECT_TRUE(Contains(reply, std::string(100'000, 'x')));
    const auto& sizes = client.PacketSizes();
    for (std::size_t i = 0; i + 1 < sizes.size(); ++i) EXPECT_EQ(sizes[i], wanted);
    EXPECT_LE(sizes.back(), wanted);
  }
}

TEST_F(Wire, UnreasonablePacketSizesAreBroughtIntoRange) {
  for (auto [wanted, given] : {std::pair{1U, 512U}, {0xFFFFFFFFU, 32767U}, {0U, 4096U}}) {
    WireClient client(server_.Port());
    client.LogIn(wanted);
    client.SendBatch("long");
    client.Receive();
    EXPECT_EQ(client.PacketSizes().front(), given);
  }
}

TEST_F(Wire, AnAttentionEndsWhatRunsAndIsConfirmedOnce) {
  WireClient client(server_.Port());
  client.LogIn();
  for (const char* batch : {"wait", "endless"}) {
    client.SendBatch(batch);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    client.Send(MessageType::Attention, "");
    std::string reply = client.Receive();
    EXPECT_EQ(FinalStatus(reply), kDoneAttention) << batch;
    EXPECT_FALSE(Contains(reply, Utf16("too late")));
  }
  // Batch and attention in one segment, and an attention that comes when nothing runs.
  client.SendBytes(Packet(MessageType::SqlBatch, BatchRecord("wait")) +
                   Packet(MessageType::Attention, ""));
  EXPECT_EQ(FinalStatus(client.Receive()), kDoneAttention);
  client.Send(MessageType::Attention, "");
  EXPECT_EQ(FinalStatus(client.Receive()), kDoneAttention);
  client.SendBatch("long");
  EXPECT_EQ(FinalStatus(client.Receive()), kDoneCount);
}

TEST_F(Wire, AClientThatLeavesEndsItsBatch) {
  std::atomic<bool> ended{false};
  engine_.batches["observed"] = [&](EngineSession& session, ResultSink&) {
    while (!session.cancel) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    ended = true;
  };
  {
    WireClient client(server_.Port());
    client.LogIn();
    client.SendBatch("observed");
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  for (int i = 0; i < 2000 && !ended; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  EXPECT_TRUE(ended);
}

// What this server does not do for a client must not pass for done.
TEST_F(Wire, WithdrawnMessagesAndFreshSessionsAreRefused) {
  constexpr std::uint8_t kLast = 1, kIgnore = 2, kReset = 8;
  for (const std::uint8_t status : {kLast | kIgnore, kLast | kReset}) {
    WireClient client(server_.Port());
    client.LogIn();
    client.Send(MessageType::SqlBatch, BatchRecord("run"), status);
    EXPECT_TRUE(Contains(client.Receive(), Utf16("protocol stream is incorrect")));
  }
  EXPECT_TRUE(engine_.Batches().empty());
}

TEST_F(Wire, TransactionsAreAnnouncedWithTheirDescriptor) {
  engine_.batches["begin transaction"] = [](EngineSession&, ResultSink& sink) {
    sink.TransactionChanged(0x0102030405060708, false);
    sink.Done(std::nullopt);
  };
  engine_.batches["commit transaction"] = [](EngineSession&, ResultSink& sink) {
    sink.TransactionChanged(0, true);
    sink.Done(std::nullopt);
  };
  WireClient client(server_.Port());
  client.LogIn();
  client.SendBatch("begin transaction");
  EXPECT_TRUE(Contains(client.Receive(), "\xE3\x0B\0\x08\x08\x08\7\6\5\4\3\2\1\0"sv));
  client.SendBatch("commit transaction");
  EXPECT_TRUE(Contains(client.Receive(), "\xE3\x0B\0\x09\0\x08\x08\7\6\5\4\3\2\1"sv));
}

TEST_F(Wire, ErrorsAndCountsOfAnUnfinishedResultStillEndIt) {
  engine_.batches["broken"] = [](EngineSession&, ResultSink& sink) {
    sink.Columns({{.name = "n", .type = {SqlType::Int}}});
    sink.Row(std::vector<Value>{std::string("no number")});
    sink.Done(1);
    sink.Done(5);
  };
  WireClient client(server_.Port());
  client.LogIn();
  client.SendBatch("broken");
  std::string reply = client.Receive();
  EXPECT_TRUE(Contains(reply, Utf16("does not match its column's type")));
  EXPECT_EQ(FinalStatus(reply), kDoneCount);
}

TEST_F(Wire, RefusalsSayWhy) {
  struct Case {
    LoginFields fields;
    std::string_view text;
  };
  const Case cases[] = {{{.password = "Secret"}, "Login failed for user 'sa'."},
                        {{.user = "bob"}, "Login failed for user 'bob'."},
                        {{.database = "nowhere"}, "Cannot open database \"nowhere\""},
                        {{.integrated = true}, "cannot be used with Integrated authentication"},
                        {{.version = 0x72090002}, "protocol version is not supported"}};
  for (const Case& refused : cases) {
    WireClient client(server_.Port());
    client.Send(MessageType::Login7, LoginRecord(refused.fields));
    std::string reply = client.Receive();
    EXPECT_TRUE(Contains(reply, Utf16(refused.text))) << refused.text;
    EXPECT_TRUE(client.ClosedByServer());
  }
  WireClient client(server_.Port());
  client.Send(MessageType::Login7, LoginRecord({.user = "SA"}));
  EXPECT_EQ(FinalStatus(client.Receive()), kDoneFinal);
}

TEST_F(Wire, AClientThatNeedsEncryptionIsToldThereIsNone) {
  constexpr std::uint8_t kOn = 1;
  constexpr std::uint8_t kRequired = 3;
  for (std::uint8_t mode : {kOn, kRequired}) {
    WireClient client(server_.Port());
    client.Send(MessageType::PreLogin, PreLoginRecord(mode));
    EXPECT_FALSE(client.Receive().empty());
    EXPECT_TRUE(client.ClosedByServer());
  }
}

}  // namespace
}  // namespace sandbox::tds
