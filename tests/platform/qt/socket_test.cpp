#include <gtest/gtest.h>
#include <linux/sockios.h>
#include <sys/ioctl.h>

#include <QDir>
#include <QTcpServer>
#include <QTcpSocket>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "base/fault.h"
#include "platform/backend.h"
#include "platform/qt/qtSocket.h"
#include "platform/winsock.h"
#include "tests/platform/qt/desktopTest.h"

namespace kelvora {
namespace {

/// A server on loopback, and a socket of the game that records its events.
class Socket : public ::testing::Test {
 protected:
  Socket() {
    EXPECT_TRUE(server_.listen(QHostAddress::LocalHost));
    socket_.emplace();
    socket_->RemoteHost = "127.0.0.1";
    socket_->RemotePort = server_.serverPort();
    socket_->onConnect = [this] { events_.push_back("Connect " + std::to_string(socket_->State())); };
    socket_->onClose = [this] { events_.push_back("Close " + std::to_string(socket_->State())); };
    socket_->onDataArrival = [this] {
      events_.push_back("Data " + std::to_string(socket_->State()));
      const std::string portion = socket_->GetData();
      maxPortion_ = std::max(maxPortion_, portion.size());
      received_ += portion;
    };
  }

  /// Connects both sides.
  void connect() {
    socket_->Connect();
    ASSERT_TRUE(serveUntil([this] { return socket_->State() == sckConnected && server_.hasPendingConnections(); }));
    other_ = server_.nextPendingConnection();
  }

  void serveFor(int milliseconds) {
    const QDeadlineTimer deadline(milliseconds);
    serveUntil([&deadline] { return deadline.hasExpired(); });
  }

  using Events = std::vector<std::string>;

  QTcpServer server_;
  std::optional<Winsock> socket_;
  QTcpSocket* other_ = nullptr;  ///< the server's end
  Events events_;
  std::string received_;
  std::size_t maxPortion_ = 0;
};

TEST_F(Socket, GoesFromClosedThroughResolvingToConnected) {
  EXPECT_EQ(socket_->State(), 0);
  socket_->Connect();
  EXPECT_TRUE(socket_->State() == 4 || socket_->State() == 6) << socket_->State();
  EXPECT_TRUE(events_.empty()) << "events are raised while events are processed, not before";
  ASSERT_TRUE(serveUntil([this] { return !events_.empty(); }));
  EXPECT_EQ(events_, Events{"Connect 7"});
}

TEST_F(Socket, ResolvesNames) {
  socket_->RemoteHost = "localhost";
  socket_->Connect();
  EXPECT_EQ(socket_->State(), 4);
  ASSERT_TRUE(serveUntil([this] { return !events_.empty(); }));
  EXPECT_EQ(events_, Events{"Connect 7"});
}

TEST_F(Socket, ConnectsOnlyWhenClosed) {
  connect();
  EXPECT_THROW(socket_->Connect(), RuntimeFault);
  EXPECT_EQ(socket_->State(), 7);
}

TEST_F(Socket, RefusedConnectionIsStateNineAndNoEvent) {
  server_.close();
  socket_->Connect();
  ASSERT_TRUE(serveUntil([this] { return socket_->State() == sckError; }));
  serveFor(20);
  EXPECT_TRUE(events_.empty());
}

TEST_F(Socket, PortOutsideItsRangeIsStateNine) {
  for (const int port : {0, -1, 65536}) {
    socket_->Close();
    socket_->RemotePort = port;
    socket_->Connect();
    EXPECT_EQ(socket_->State(), 9) << port;
  }
}

TEST_F(Socket, AfterAnErrorCloseAllowsANewConnection) {
  socket_->RemotePort = 0;
  socket_->Connect();
  socket_->Close();
  EXPECT_EQ(socket_->State(), 0);
  socket_->RemotePort = server_.serverPort();
  connect();
  EXPECT_EQ(events_, Events{"Connect 7"});
}

TEST_F(Socket, CarriesBytesBothWays) {
  connect();
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all.push_back(static_cast<char>(byte));
  socket_->SendData(all);
  ASSERT_TRUE(serveUntil([this] { return other_->bytesAvailable() == 256; }));
  EXPECT_EQ(other_->readAll().toStdString(), all);
  other_->write(all.data(), 256);
  ASSERT_TRUE(serveUntil([this] { return received_.size() == 256; }));
  EXPECT_EQ(received_, all);
}

TEST_F(Socket, PeerClosingIsStateEightUntilClose) {
  connect();
  other_->close();
  ASSERT_TRUE(serveUntil([this] { return socket_->State() != sckConnected; }));
  EXPECT_EQ(events_, (Events{"Connect 7", "Close 8"}));
  serveFor(20);
  EXPECT_EQ(socket_->State(), 8);
  EXPECT_THROW(socket_->SendData("x"), RuntimeFault);
  socket_->Close();
  EXPECT_EQ(socket_->State(), 0);
  EXPECT_EQ(events_.size(), 2U) << "calling Close raises no event";
}

TEST_F(Socket, BytesBeforeTheEndAreDeliveredFirst) {
  connect();
  other_->write("denied");
  other_->close();
  ASSERT_TRUE(serveUntil([this] { return socket_->State() == sckClosing; }));
  EXPECT_EQ(events_, (Events{"Connect 7", "Data 7", "Close 8"}));
  EXPECT_EQ(received_, "denied");
}

TEST_F(Socket, BytesBeforeTheEndAreDeliveredInAnyNumberOfPortions) {
  connect();
  const std::string flood(1'000'000, 'x');
  other_->write(flood.data(), static_cast<qint64>(flood.size()));
  other_->disconnectFromHost();
  ASSERT_TRUE(serveUntil([this] { return socket_->State() == sckClosing; }));
  EXPECT_EQ(received_.size(), flood.size());
  EXPECT_EQ(events_.back(), "Close 8");
}

TEST_F(Socket, OneEventDeliversAllDataReadAhead) {
  connect();
  const std::string flood(1'000'000, 'x');
  ASSERT_TRUE(serveUntil([this, &flood] {
    if (other_->bytesToWrite() == 0) other_->write(flood.data(), static_cast<qint64>(flood.size()));
    return maxPortion_ >= 262'144;
  })) << "no more than "
      << maxPortion_ << " at once";
  EXPECT_EQ(maxPortion_, 262'144U);
}

TEST_F(Socket, BytesOfABurstAreOneEvent) {
  // Less than the system buffers for a slow reader, and more than one read of the toolkit returns.
  connect();
  const std::string burst(40'000, 'x');
  for (int i = 0; i < 3; ++i) {
    other_->write(burst.data(), static_cast<qint64>(burst.size()));
    while (other_->bytesToWrite() > 0) ASSERT_TRUE(other_->waitForBytesWritten(60'000));
  }
  // The system may be late to deliver what it has taken.
  for (int unsent = 1; unsent != 0; std::this_thread::yield()) {
    ASSERT_EQ(::ioctl(static_cast<int>(other_->socketDescriptor()), SIOCOUTQ, &unsent), 0);
  }
  ASSERT_TRUE(serveUntil([this, &burst] { return received_.size() == 3 * burst.size(); }));
  EXPECT_EQ(events_, (Events{"Connect 7", "Data 7"}));
}

TEST_F(Socket, AReadingLoopEndsEvenIfMoreKeepsArriving) {
  connect();
  std::size_t most = 0;
  socket_->onDataArrival = [this, &most] {
    std::size_t now = 0;
    for (std::string portion = socket_->GetData(); !portion.empty(); portion = socket_->GetData()) {
      now += portion.size();
      other_->write(std::string(70'000, 'y').c_str(), 70'000);
      other_->flush();
    }
    most = std::max(most, now);
    received_.append(now, 'x');
  };
  other_->write("start");
  ASSERT_TRUE(serveUntil([this] { return received_.size() > 500'000; }));
  EXPECT_LE(most, 262'144U);
}

TEST_F(Socket, UnreadBytesStayWithinTheirBuffer) {
  connect();
  socket_->onDataArrival = nullptr;
  qint64 sent = 0;
  // Bytes that don't fit the game's and the system's buffers stay with the sender.
  QObject::connect(other_, &QTcpSocket::bytesWritten, other_, [&sent](qint64 bytes) { sent += bytes; });
  other_->write(std::string(60'000'000, 'x').c_str(), 60'000'000);
  serveFor(200);
  EXPECT_GT(other_->bytesToWrite(), 20'000'000);
  EXPECT_EQ(socket_->State(), 7);
}

TEST_F(Socket, ServerThatNeverReadsIsDropped) {
  connect();
  other_->setReadBufferSize(1);
  const std::string chunk(100'000, 'x');
  int chunks = 0;
  while (socket_->State() == sckConnected && chunks < 1000) {
    socket_->SendData(chunk);
    ++chunks;
    DoEvents();
  }
  EXPECT_EQ(socket_->State(), 9);
  serveFor(20);
  EXPECT_EQ(events_, Events{"Connect 7"});
}

TEST_F(Socket, AThousandConnectionsLeaveNothingOpen) {
  const auto descriptors = [] { return QDir("/proc/self/fd").entryList(QDir::Files | QDir::System).size(); };
  socket_->onClose = [this] {
    events_.emplace_back("Close");
    socket_->Close();
  };
  const auto comeAndGo = [&](int i) {
    events_.clear();
    connect();
    // Some closes are orderly, some are resets, some come in the middle of data, some from this side.
    if (i % 2 == 0) other_->write("\x80\x86half", 6);
    if (i % 4 == 3) {
      socket_->Close();
    } else if (i % 4 == 2) {
      other_->abort();
    } else {
      other_->disconnectFromHost();
    }
    ASSERT_TRUE(serveUntil([this] { return socket_->State() == sckClosed || socket_->State() == sckError; })) << i;
    socket_->Close();
    other_->deleteLater();
    serveFor(0);
  };
  for (int i = 0; i < 8; ++i) comeAndGo(i);
  const auto before = descriptors();
  for (int i = 0; i < 1'000; ++i) comeAndGo(i);
  EXPECT_TRUE(serveUntil([&] { return descriptors() <= before; }));
}

TEST_F(Socket, CloseDropsPendingEvents) {
  connect();
  other_->write("late");
  other_->flush();
  ASSERT_TRUE(other_->waitForBytesWritten(1000) || other_->bytesToWrite() == 0);
  socket_->Close();
  serveFor(50);
  EXPECT_EQ(events_, Events{"Connect 7"});
  EXPECT_EQ(socket_->GetData(), "");
}

TEST_F(Socket, MayBeClosedAndReopenedInItsOwnEvents) {
  bool reopened = false;
  socket_->onDataArrival = [this, &reopened] {
    socket_->GetData();
    socket_->Close();
    if (!reopened) socket_->Connect();
    reopened = true;
  };
  connect();
  other_->write("first");
  ASSERT_TRUE(serveUntil([this] { return server_.hasPendingConnections(); }));
  other_ = server_.nextPendingConnection();
  ASSERT_TRUE(serveUntil([this] { return socket_->State() == sckConnected; }));
  other_->write("second");
  ASSERT_TRUE(serveUntil([this] { return socket_->State() == sckClosed; }));
  EXPECT_EQ(events_, (Events{"Connect 7", "Connect 7"}));
}

TEST_F(Socket, MayBeDeletedInItsOwnEvents) {
  socket_->onDataArrival = [this] { socket_.reset(); };
  connect();
  other_->write("x");
  ASSERT_TRUE(serveUntil([this] { return !socket_; }));
  serveFor(20);
  ASSERT_TRUE(serveUntil([this] { return other_->state() == QAbstractSocket::UnconnectedState; }));

  socket_.emplace();
  socket_->RemoteHost = "127.0.0.1";
  socket_->RemotePort = server_.serverPort();
  socket_->onConnect = [this] { socket_.reset(); };
  socket_->Connect();
  ASSERT_TRUE(serveUntil([this] { return !socket_; }));
  serveFor(20);
}

TEST_F(Socket, CloseRaisedWithinAnotherEventComesLast) {
  connect();
  socket_->onDataArrival = [this] {
    socket_->GetData();
    EXPECT_TRUE(serveUntil([this] { return socket_->State() == sckClosing; })) << "as under a message box";
  };
  other_->write("denied");
  other_->close();
  ASSERT_TRUE(serveUntil([this] { return socket_->State() == sckClosing; }));
  serveFor(20);
  EXPECT_EQ(socket_->State(), 8);
  EXPECT_EQ(events_, (Events{"Connect 7", "Close 8"})) << "Connect is not raised again";
}

TEST_F(Socket, ClosingInCloseEventLeavesItClosed) {
  socket_->onClose = [this] { socket_->Close(); };
  connect();
  other_->close();
  ASSERT_TRUE(serveUntil([this] { return socket_->State() == sckClosed; }));
}

}  // namespace
}  // namespace kelvora
