#include "platform/sockets/streamSocket.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/fault.h"
#include "platform/backend.h"
#include "platform/headless/headlessBackend.h"
#include "platform/winsock.h"
#include "tests/platform/sockets/loopbackServer.h"

namespace kelvora {
namespace {

/// A backend without a screen, but with real sockets.
class NetworkBackend : public HeadlessBackend {
 public:
  std::unique_ptr<SocketPeer> createSocket(Winsock& socket) override { return std::make_unique<StreamSocket>(socket); }
};

/// A server on the loopback interface, and a socket of the game that records its events.
class StreamSockets : public ::testing::Test {
 protected:
  StreamSockets() {
    installBackend(&backend_);
    socket_.emplace();
    socket_->RemoteHost = "127.0.0.1";
    socket_->RemotePort = server_.port;
    socket_->onConnect = [this] { events_.push_back("Connect " + std::to_string(socket_->State())); };
    socket_->onClose = [this] { events_.push_back("Close " + std::to_string(socket_->State())); };
    socket_->onDataArrival = [this] {
      events_.push_back("Data " + std::to_string(socket_->State()));
      const std::string portion = socket_->GetData();
      maxPortion_ = std::max(maxPortion_, portion.size());
      received_ += portion;
    };
  }
  ~StreamSockets() override {
    socket_.reset();
    installBackend(nullptr);
  }

  bool reaches(SocketState state) {
    return serveSocketsUntil([this, state] { return socket_->State() == state; });
  }

  /// Connects both sides.
  void connect() {
    socket_->Connect();
    ASSERT_TRUE(reaches(sckConnected));
    server_.accept();
  }

  /// Sends any number of bytes, and raises events meanwhile.
  void deliver(std::string_view bytes) {
    while (!bytes.empty()) {
      bytes.remove_prefix(server_.push(bytes));
      serveSockets();
    }
  }

  /// Raises the events that are due.
  void serveAll() {
    while (serveSockets()) {
    }
  }

  using Events = std::vector<std::string>;

  NetworkBackend backend_;
  LoopbackServer server_;
  std::optional<Winsock> socket_;
  Events events_;
  std::string received_;
  std::size_t maxPortion_ = 0;
};

TEST_F(StreamSockets, GoFromClosedThroughResolvingToConnected) {
  EXPECT_EQ(socket_->State(), sckClosed);
  socket_->Connect();
  EXPECT_EQ(socket_->State(), sckResolvingHost);
  EXPECT_TRUE(events_.empty()) << "events are raised while events are processed, not before";
  ASSERT_TRUE(reaches(sckConnected));
  EXPECT_EQ(events_, Events{"Connect 7"});
}

TEST_F(StreamSockets, ConnectByName) {
  socket_->RemoteHost = "localhost";
  connect();
  EXPECT_EQ(events_, Events{"Connect 7"});
}

TEST_F(StreamSockets, ConnectOverTheSixthVersionOfTheProtocol) {
  const LoopbackServer server(AF_INET6);
  socket_->RemoteHost = "::1";
  socket_->RemotePort = server.port;
  socket_->Connect();
  EXPECT_TRUE(reaches(server.isListening ? sckConnected : sckError)) << "some machines lack it";
}

TEST_F(StreamSockets, ANameThatCannotExistIsStateNineWithoutAnEvent) {
  for (const std::string& name : {std::string(), std::string(300, 'a'), std::string("\xE4..\xFF")}) {
    socket_->RemoteHost = name;
    socket_->Connect();
    EXPECT_EQ(socket_->State(), sckResolvingHost);
    EXPECT_TRUE(reaches(sckError)) << name;
    socket_->Close();
  }
  EXPECT_TRUE(events_.empty());
}

TEST_F(StreamSockets, ALookupMayOutliveItsSocket) {
  for (int i = 0; i < 50; ++i) {
    Winsock shortLived;
    shortLived.RemoteHost = "localhost";
    shortLived.RemotePort = server_.port;
    shortLived.Connect();
    if (i % 2 == 0) shortLived.Close();
  }
  connect();
  EXPECT_EQ(events_, Events{"Connect 7"});
}

TEST_F(StreamSockets, ConnectOnlyWhenClosed) {
  connect();
  EXPECT_THROW(socket_->Connect(), RuntimeFault);
  EXPECT_EQ(socket_->State(), sckConnected);
}

TEST_F(StreamSockets, ARefusedConnectionIsStateNineWithoutAnEvent) {
  server_.stopListening();
  socket_->Connect();
  ASSERT_TRUE(reaches(sckError));
  serveAll();
  EXPECT_TRUE(events_.empty());
}

TEST_F(StreamSockets, APortOutsideItsRangeIsStateNineAtOnce) {
  for (const int port : {0, -1, 65536}) {
    socket_->Close();
    socket_->RemotePort = port;
    socket_->Connect();
    EXPECT_EQ(socket_->State(), sckError) << port;
  }
}

TEST_F(StreamSockets, ConnectAgainAfterAnErrorAndAClose) {
  socket_->RemotePort = 0;
  socket_->Connect();
  socket_->Close();
  EXPECT_EQ(socket_->State(), sckClosed);
  socket_->RemotePort = server_.port;
  connect();
  EXPECT_EQ(events_, Events{"Connect 7"});
}

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

TEST_F(StreamSockets, APeerThatClosesIsStateEightUntilClose) {
  connect();
  server_.hangUp();
  ASSERT_TRUE(reaches(sckClosing));
  serveAll();
  EXPECT_EQ(events_, (Events{"Connect 7", "Close 8"}));
  EXPECT_EQ(socket_->State(), sckClosing);
  EXPECT_THROW(socket_->SendData("x"), RuntimeFault);
  socket_->Close();
  EXPECT_EQ(socket_->State(), sckClosed);
  EXPECT_EQ(events_.size(), 2U) << "calling Close raises no event";
}

TEST_F(StreamSockets, EndTheirSideOnceThePeerHasEndedItsOwn) {
  connect();
  server_.endSending();
  ASSERT_TRUE(reaches(sckClosing));
  EXPECT_TRUE(server_.isClosedByPeer());
}

TEST_F(StreamSockets, TakeAResetForAClose) {
  connect();
  server_.reset();
  ASSERT_TRUE(reaches(sckClosing));
  EXPECT_EQ(events_, (Events{"Connect 7", "Close 8"}));
}

TEST_F(StreamSockets, AResetThatASendMeetsFirstIsACloseToo) {
  connect();
  server_.reset();
  for (int i = 0; i < 3; ++i) socket_->SendData("into the void");
  ASSERT_TRUE(reaches(sckClosing));
  EXPECT_EQ(events_, (Events{"Connect 7", "Close 8"}));
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

#ifndef _WIN32  // Windows doesn't tell when the other end has the bytes.

TEST_F(StreamSockets, BytesOfABurstAreOneEvent) {
  // Less than the system buffers for a slow reader, and more than one read returns.
  connect();
  const std::string burst(40'000, 'x');
  for (int i = 0; i < 3; ++i) server_.send(burst);
  ASSERT_TRUE(serveSocketsUntil([this, &burst] { return received_.size() == 3 * burst.size(); }));
  EXPECT_EQ(events_, (Events{"Connect 7", "Data 7"}));
}

TEST_F(StreamSockets, AThousandConnectionsLeaveNothingOpen) {
  const auto descriptors = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
  };
  const auto comeAndGo = [&](int i) {
    connect();
    // Some closes are orderly, some are resets, some come in the middle of data, some from this side.
    if (i % 2 == 0) server_.send("\x80\x86half");
    if (i % 4 == 2) {
      server_.reset();
    } else if (i % 4 != 3) {
      server_.hangUp();
    }
    if (i % 4 != 3) {
      ASSERT_TRUE(reaches(sckClosing)) << i;
    }
    socket_->Close();
    server_.hangUp();
  };
  for (int i = 0; i < 8; ++i) comeAndGo(i);
  const auto before = descriptors();
  for (int i = 0; i < 1'000; ++i) comeAndGo(i);
  EXPECT_EQ(descriptors(), before);
}

#endif

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

TEST_F(StreamSockets, ClosingDropsPendingEvents) {
  connect();
  server_.send("late");
  socket_->Close();
  serveAll();
  EXPECT_EQ(events_, Events{"Connect 7"});
  EXPECT_EQ(socket_->GetData(), "");
}

TEST_F(StreamSockets, MayBeClosedAndReopenedInTheirOwnEvents) {
  bool reopened = false;
  socket_->onDataArrival = [this, &reopened] {
    socket_->GetData();
    socket_->Close();
    if (!reopened) socket_->Connect();
    reopened = true;
  };
  connect();
  server_.send("first");
  ASSERT_TRUE(serveSocketsUntil([&] { return reopened; }));
  ASSERT_TRUE(reaches(sckConnected));
  server_.accept();
  server_.send("second");
  ASSERT_TRUE(reaches(sckClosed));
  EXPECT_EQ(events_, (Events{"Connect 7", "Connect 7"}));
}

TEST_F(StreamSockets, MayBeDestroyedInTheirOwnEvents) {
  socket_->onDataArrival = [this] { socket_.reset(); };
  connect();
  server_.send("x");
  ASSERT_TRUE(serveSocketsUntil([this] { return !socket_; }));
  EXPECT_TRUE(server_.isClosedByPeer());

  socket_.emplace();
  socket_->RemoteHost = "127.0.0.1";
  socket_->RemotePort = server_.port;
  socket_->onConnect = [this] { socket_.reset(); };
  socket_->Connect();
  EXPECT_TRUE(serveSocketsUntil([this] { return !socket_; }));
}

TEST_F(StreamSockets, ADestroyedOneTakesNoEventFromTheNext) {
  LoopbackServer otherServer;
  Winsock other;
  other.RemoteHost = "127.0.0.1";
  other.RemotePort = otherServer.port;
  std::string others;
  other.onDataArrival = [&] { others += other.GetData(); };
  other.Connect();
  socket_->onDataArrival = [this] { socket_.reset(); };
  connect();
  ASSERT_TRUE(serveSocketsUntil([&] { return other.State() == sckConnected; }));
  otherServer.accept();
  server_.send("first");
  otherServer.send("second");
  ASSERT_TRUE(serveSocketsUntil([this] { return !socket_; }));
  EXPECT_TRUE(serveSocketsUntil([&] { return others == "second"; }));
}

TEST_F(StreamSockets, ACloseRaisedWithinAnotherEventComesLast) {
  connect();
  socket_->onDataArrival = [this] {
    socket_->GetData();
    EXPECT_TRUE(reaches(sckClosing)) << "as under a message box";
  };
  server_.send("denied");
  server_.hangUp();
  ASSERT_TRUE(reaches(sckClosing));
  serveAll();
  EXPECT_EQ(socket_->State(), sckClosing);
  EXPECT_EQ(events_, (Events{"Connect 7", "Close 8"})) << "Connect is not raised again";
}

TEST_F(StreamSockets, ClosingInTheCloseEventLeavesThemClosed) {
  socket_->onClose = [this] { socket_->Close(); };
  connect();
  server_.hangUp();
  ASSERT_TRUE(reaches(sckClosed));
}

}  // namespace
}  // namespace kelvora
