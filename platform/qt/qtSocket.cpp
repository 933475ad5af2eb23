#include "platform/qt/qtSocket.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QNetworkProxy>
#include <functional>

#include "platform/desktop/handlerCall.h"
#include "platform/qt/codePage.h"

namespace kelvora {

/// One connection from start to end. Events not yet raised die with it, so a socket that is closed and reopened gets
/// none from its past.
struct QtSocket::Connection {
  QTcpSocket wire;
  bool isConnected = false;    ///< it was established
  bool isClosed = false;       ///< the peer closed it
  bool isBroken = false;       ///< it failed
  bool hasNews = false;        ///< data has arrived since the last data event
  bool isEventQueued = false;  ///< a turn of the event loop will notify the game
  bool isDropped = false;      ///< the game has dropped it
  qint64 announced = 0;        ///< bytes announced to the game

  /// Deletes the connection at a later turn of the event loop, because its socket may have started this one.
  static void retire(Connection* connection) {
    if (qApp) {
      QMetaObject::invokeMethod(
          qApp, [connection] { delete connection; }, Qt::QueuedConnection);
    } else {
      delete connection;
    }
  }
};

namespace {

void runEvent(const std::function<void()>& event) {
  if (event) runHandler([handler = event] { handler(); });
}

}  // namespace

QtSocket::~QtSocket() { drop(); }

void QtSocket::connect(const std::string& host, int port) {
  drop();
  constexpr int maxPort = 65535;
  if (port < 1 || port > maxPort) {
    state_ = sckError;
    return;
  }
  connection_ = std::shared_ptr<Connection>(new Connection, &Connection::retire);
  state_ = sckResolvingHost;
  Connection& connection = *connection_;
  QTcpSocket& wire = connection.wire;
  wire.setProxy(QNetworkProxy::NoProxy);
  wire.setReadBufferSize(readBufferSize);
  QObject::connect(&wire, &QTcpSocket::hostFound, &wire, [this] {
    if (state_ == sckResolvingHost) state_ = sckConnecting;
  });
  QObject::connect(&wire, &QTcpSocket::connected, &wire, [this, &connection] {
    connection.wire.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connection.isConnected = true;
    queueEvent();
  });
  QObject::connect(&wire, &QTcpSocket::readyRead, &wire, [this, &connection] {
    connection.hasNews = true;
    queueEvent();
  });
  QObject::connect(&wire, &QTcpSocket::disconnected, &wire, [this, &connection] {
    connection.isClosed = true;
    queueEvent();
  });
  QObject::connect(&wire, &QTcpSocket::errorOccurred, &wire, [this, &connection](QAbstractSocket::SocketError error) {
    if (error == QAbstractSocket::RemoteHostClosedError) return;  // a normal close; `disconnected` follows
    if (error == QAbstractSocket::SocketTimeoutError) return;     // no more data
    connection.isBroken = true;
    queueEvent();
  });
  wire.connectToHost(toQString(host), static_cast<quint16>(port));
}

void QtSocket::close() {
  drop();
  state_ = sckClosed;
}

void QtSocket::send(std::string_view data) {
  if (!connection_ || connection_->wire.state() != QAbstractSocket::ConnectedState) return;
  QTcpSocket& wire = connection_->wire;
  if (wire.bytesToWrite() + static_cast<qint64>(data.size()) > writeBufferLimit) {
    fail();
    return;
  }
  wire.write(data.data(), static_cast<qint64>(data.size()));
}

std::string QtSocket::take() {
  if (!connection_) return {};
  const QByteArray portion = connection_->wire.read(connection_->announced);
  connection_->announced -= portion.size();
  return portion.toStdString();
}

void QtSocket::queueEvent() {
  if (!connection_ || connection_->isEventQueued) return;
  connection_->isEventQueued = true;
  const std::weak_ptr<Connection> current = connection_;
  QMetaObject::invokeMethod(
      &connection_->wire,
      [this, current] {
        if (current.lock()) raiseNextEvent();
      },
      Qt::QueuedConnection);
}

/// Reads what has arrived, up to the buffer's size, because the game loses a message that spans two events.
void QtSocket::readAhead(QTcpSocket& wire) {
  while (wire.state() == QAbstractSocket::ConnectedState && wire.bytesAvailable() < readBufferSize &&
         wire.waitForReadyRead(0)) {
  }
}

/// Raises one event: the connection, then all data read, and the close once nothing is left. A handler may drop the
/// connection, which deletes this object.
void QtSocket::raiseNextEvent() {
  const std::shared_ptr<Connection> connection = connection_;
  connection->isEventQueued = false;
  if (connection->isConnected && state_ < sckConnected) {
    state_ = sckConnected;
    if (connection->hasNews || connection->isClosed || connection->isBroken) queueEvent();
    runEvent(owner_.onConnect);
  } else if (connection->hasNews && connection->wire.bytesAvailable() > 0) {
    readAhead(connection->wire);
    const qint64 portion = connection->wire.bytesAvailable();
    connection->hasNews = false;
    connection->announced = portion;
    noteForReport("bytes that came from " + toBytes(connection->wire.peerName()) + ":" +
                  std::to_string(connection->wire.peerPort()));
    runEvent(owner_.onDataArrival);
    if (connection->isDropped) return;
    // If a handler leaves bytes unread, there is no further event until more arrive.
    if (connection->announced < portion && connection->wire.bytesAvailable() > 0) connection->hasNews = true;
    if (connection->hasNews || connection->isClosed || connection->isBroken) queueEvent();
  } else if (connection->isBroken) {
    fail();
  } else if (connection->isClosed && state_ != sckClosing) {
    state_ = sckClosing;
    runEvent(owner_.onClose);
  }
}

void QtSocket::fail() {
  drop();
  state_ = sckError;
}

void QtSocket::drop() {
  if (!connection_) return;
  connection_->isDropped = true;
  connection_->wire.disconnect();
  connection_->wire.abort();
  connection_.reset();
}

}  // namespace kelvora
