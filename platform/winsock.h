#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace kelvora {

class Winsock;

/// States of a socket, numbered as the connection label names them.
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

/// The backend's side of a socket.
class SocketPeer {
 public:
  virtual ~SocketPeer() = default;
  virtual int state() const = 0;
  virtual void connect(const std::string& host, int port) = 0;
  virtual void close() = 0;
  virtual void send(std::string_view data) = 0;
  /// Takes what has arrived, at most one bounded portion; empty when nothing is left.
  virtual std::string take() = 0;
};

/// A TCP connection as the game sees it. Its events run only inside DoEvents or while a box stands. An error leads to
/// state 9 and to no event. Unsent and unread bytes are gone after Close.
class Winsock {
 public:
  Winsock();
  Winsock(const Winsock&) = delete;
  Winsock& operator=(const Winsock&) = delete;

  std::string RemoteHost;
  std::int32_t RemotePort = 0;

  int State() const { return peer_->state(); }
  /// Starts to connect; a socket that is not closed is RuntimeFault.
  void Connect();
  void Close();
  /// Queues bytes for sending; a socket that is not connected is RuntimeFault.
  void SendData(std::string_view data);
  std::string GetData() { return peer_->take(); }

  std::function<void()> onCommand;  ///< inside Connect and Close, which alone end a state that is closed or an error
  std::function<void()> onConnect;
  std::function<void()> onClose;  ///< the other side closed
  std::function<void()> onDataArrival;

 private:
  std::unique_ptr<SocketPeer> peer_;
};

}  // namespace kelvora
