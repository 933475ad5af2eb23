#include "tests/platform/sockets/streamSocketTest.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace kelvora {
namespace {

TEST_F(StreamSockets, CarryBytesBothWays) {
  connect();
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all.push_back(static_cast<char>(byte));
  socket_->SendData(all);
  EXPECT_EQ(server_.receive(256), all);
  server_.send(all);
  ASSERT_TRUE(serveSocketsUntil([this] { return received_.size() == 256; }));
  EXPECT_EQ(received_, all);
}

TEST_F(StreamSockets, SendWhatTheSystemDidNotTakeAtOnce) {
  connect();
  std::string sent;
  for (int i = 0; i < 30; ++i) sent += std::string(100'000, static_cast<char>('A' + i));
  socket_->SendData(sent);
  std::string got;
  while (got.size() < sent.size()) {
    const std::string portion = server_.receive(std::min<std::size_t>(50'000, sent.size() - got.size()));
    ASSERT_FALSE(portion.empty());
    got += portion;
    serveSockets();
  }
  EXPECT_EQ(got, sent);
}

TEST_F(StreamSockets, BytesBeforeTheEndAreDeliveredFirst) {
  connect();
  server_.send("denied");
  server_.hangUp();
  ASSERT_TRUE(reaches(sckClosing));
  EXPECT_EQ(events_, (Events{"Connect 7", "Data 7", "Close 8"}));
  EXPECT_EQ(received_, "denied");
}

TEST_F(StreamSockets, BytesBeforeTheEndAreDeliveredInAnyNumberOfPortions) {
  connect();
  std::string flood;
  for (int i = 0; i < 100; ++i) flood += std::string(10'000, static_cast<char>('!' + i % 90));
  deliver(flood);
  server_.hangUp();
  ASSERT_TRUE(reaches(sckClosing));
  EXPECT_EQ(received_, flood);
  EXPECT_EQ(events_.back(), "Close 8");
}

TEST_F(StreamSockets, OneEventDeliversAllDataReadAhead) {
  connect();
  const std::string flood(1'000'000, 'x');
  for (int i = 0; i < 1000 && maxPortion_ < 262'144; ++i) {
    while (server_.push(flood) > 0) {
    }
    serveSockets();
  }
  EXPECT_EQ(maxPortion_, 262'144U);
}

TEST_F(StreamSockets, AReadingLoopEndsEvenIfMoreKeepsArriving) {
  connect();
  std::size_t most = 0;
  socket_->onDataArrival = [this, &most] {
    std::size_t now = 0;
    for (std::string portion = socket_->GetData(); !portion.empty(); portion = socket_->GetData()) {
      now += portion.size();
      server_.push(std::string(70'000, 'y'));
    }
    most = std::max(most, now);
    received_.append(now, 'x');
  };
  server_.send("start");
  ASSERT_TRUE(serveSocketsUntil([this] { return received_.size() > 500'000; }));
  EXPECT_LE(most, 262'144U);
}

TEST_F(StreamSockets, UnreadBytesStayWithinTheirBuffer) {
  connect();
  socket_->onDataArrival = nullptr;
  // Bytes that don't fit the game's and the system's buffers stay with the sender.
  std::size_t sent = 0;
  for (int i = 0; i < 1000; ++i) {
    sent += server_.push(std::string(100'000, 'x'));
    serveSockets();
  }
  EXPECT_LT(sent, 40'000'000U);
  EXPECT_EQ(socket_->State(), sckConnected);
  EXPECT_EQ(socket_->GetData().size(), 262'144U);
}

TEST_F(StreamSockets, BytesThatWaitedForAFullBufferArriveOnceItIsRead) {
  connect();
  socket_->onDataArrival = nullptr;
  const std::string flood(400'000, 'x');
  for (std::size_t sent = 0; sent < flood.size(); serveSockets()) {
    sent += server_.push(std::string_view(flood).substr(sent));
  }
  serveAll();
  socket_->onDataArrival = [this] { received_ += socket_->GetData(); };
  received_ = socket_->GetData();
  EXPECT_TRUE(serveSocketsUntil([&] { return received_.size() == flood.size(); })) << received_.size();
}

TEST_F(StreamSockets, AServerThatNeverReadsIsDropped) {
  connect();
  const std::string chunk(100'000, 'x');
  for (int i = 0; i < 1000 && socket_->State() == sckConnected; ++i) {
    socket_->SendData(chunk);
    serveSockets();
  }
  EXPECT_EQ(socket_->State(), sckError);
  serveAll();
  EXPECT_EQ(events_, Events{"Connect 7"});
}

#ifndef _WIN32  // Windows doesn't tell when the other end has the bytes.

TEST_F(StreamSockets, BytesOfABurstAreOneEvent) {
  // Less than the system buffers for a slow reader, and more than one read returns.
  connect();
  const std::string burst(40'000, 'x');
  for (int i = 0; i < 3; ++i) server_.send(burst);
  ASSERT_TRUE(serveSocketsUntil([this, &burst] { return received_.size() == 3 * burst.size(); }));
  EXPECT_EQ(events_, (Events{"Connect 7", "Data 7"}));
}

#endif

}  // namespace
}  // namespace kelvora
