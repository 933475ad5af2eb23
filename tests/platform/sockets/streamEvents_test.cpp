#include "tests/platform/sockets/streamSocketTest.h"

#include <string>

#include "platform/winsock.h"

namespace kelvora {
namespace {

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
