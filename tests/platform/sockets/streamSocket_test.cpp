#include "platform/sockets/streamSocket.h"

#include <filesystem>
#include <iterator>
#include <string>

#include "base/fault.h"
#include "platform/winsock.h"
#include "tests/platform/sockets/streamSocketTest.h"

namespace kelvora {
namespace {

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

#ifndef _WIN32  // Wine looks letters up as they are.

TEST_F(StreamSockets, ConnectByANameWithOtherLettersInAnyLocale) {
  // The tests run in the locale "C". An ordinal sign is an o to name servers.
  socket_->RemoteHost =
      "l\xBA"
      "calh\xBA"
      "st";
  connect();
  EXPECT_EQ(events_, Events{"Connect 7"});
}

#endif

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

TEST_F(StreamSockets, ACallThatFailsEndsTheSessionWithStateNine) {
  connect();
  closeSocket(socketConnectedTo(server_.port));
  signalNetwork();
  ASSERT_TRUE(reaches(sckError));
  serveAll();
  EXPECT_EQ(events_, Events{"Connect 7"});
}

#ifndef _WIN32  // Windows doesn't list what a process has open.

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

}  // namespace
}  // namespace kelvora
