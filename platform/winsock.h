#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace kelvora {

class Winsock;

/// States of a socket. The connection label shows their names.
enum SocketState : int {
  sckClosed,
  sckOpen,
  sckListening,
  sckConnectionPending,
  sckResolvingHost,
  sckHostResolved,
  sckConnecting,
  sckConnected,
  sckClosing,
  sckError,
};

/// The backend's side of a socket. Winsock, which states the contracts, calls `connect` only on a closed socket and
/// `send` only on a connected one.
class SocketPeer {
 public:
  static constexpr std::int64_t readBufferSize = 256 * 1024;  ///< bytes; beyond it the server has to wait
  static constexpr std::int64_t writeBufferLimit =
      4 * 1024 * 1024;  ///< unsent bytes; beyond it the connection is dropped

  virtual ~SocketPeer() = default;
  virtual SocketState state() const = 0;
  virtual void connect(const std::string& host, int port) = 0;
  virtual void close() = 0;
  virtual void send(std::string_view data) = 0;
  /// Takes received data, at most one bounded portion. Empty if there is none left.
  virtual std::string take() = 0;
};

/// A TCP connection for the game. Its events run only inside DoEvents or while a box is open. An error sets sckError
/// and raises no event. Close discards unsent and unread bytes.
class Winsock {
 public:
  Winsock();
  Winsock(const Winsock&) = delete;
  Winsock& operator=(const Winsock&) = delete;

  std::string RemoteHost;
  std::int32_t RemotePort = 0;  ///< 1 to 65535

  SocketState State() const { return peer_->state(); }
  /// Starts connecting. RuntimeFault unless the socket is closed.
  void Connect();
  /// Closes the connection, if any. Raises no event.
  void Close();
  /// Queues bytes for sending. RuntimeFault unless the socket is connected.
  void SendData(std::string_view data);
  /// Returns received bytes, at most one bounded portion. Empty if there are none left.
  std::string GetData() { return peer_->take(); }

  std::function<void()> onCommand;  ///< called by Connect and Close, the only ways out of a closed or failed state
  std::function<void()> onConnect;
  std::function<void()> onClose;  ///< the server closed the connection
  std::function<void()> onDataArrival;

 private:
  std::unique_ptr<SocketPeer> peer_;
};

}  // namespace kelvora
