#include <gtest/gtest.h>

#include <string>

#include "platform/backend.h"
#include "platform/winsock.h"
#include "tests/platform/qt/desktopTest.h"
#include "tests/platform/sockets/loopbackServer.h"

namespace kelvora {
namespace {

/// A socket that the toolkit's event loop serves, and nothing else.
class ServedByTheToolkit : public ::testing::Test {
 protected:
  ServedByTheToolkit() {
    socket_.RemoteHost = "127.0.0.1";
    socket_.RemotePort = server_.port;
    socket_.onConnect = [this] { events_ += "connect "; };
    socket_.onDataArrival = [this] { events_ += socket_.GetData() + ' '; };
    socket_.onClose = [this] { events_ += "close "; };
  }

  bool reaches(SocketState state) {
    return serveUntil([this, state] { return socket_.State() == state; });
  }

  LoopbackServer server_;
  Winsock socket_;
  std::string events_;
};

TEST_F(ServedByTheToolkit, RaisesAllEvents) {
  socket_.Connect();
  ASSERT_TRUE(reaches(sckConnected));
  server_.accept();
  server_.send("bytes");
  server_.hangUp();
  ASSERT_TRUE(reaches(sckClosing));
  EXPECT_EQ(events_, "connect bytes close ");
}

TEST_F(ServedByTheToolkit, RaisesEventsWithinDoEvents) {
  socket_.Connect();
  while (socket_.State() < sckConnected) backend().doEvents(true);
  EXPECT_EQ(events_, "connect ");
}

TEST_F(ServedByTheToolkit, RaisesEventsInALoopWithinAnotherEvent) {
  socket_.onDataArrival = [this] {
    events_ += socket_.GetData() + ' ';
    EXPECT_TRUE(reaches(sckClosing)) << "as under a message box";
    events_ += "and back ";
  };
  socket_.Connect();
  ASSERT_TRUE(reaches(sckConnected));
  server_.accept();
  server_.send("denied");
  server_.hangUp();
  ASSERT_TRUE(reaches(sckClosing));
  EXPECT_EQ(events_, "connect denied close and back ");
}

}  // namespace
}  // namespace kelvora
