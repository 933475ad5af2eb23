#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <linux/sockios.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <thread>
#include <vector>

#include "generated/version.h"
#include "protocol/messages.h"
#include "tests/support/wireMessage.h"

namespace kelvora::server {

/// A blocking loopback client that gives up after a minute of silence.
class TcpClient {
 public:
  /// `host` is the last byte of its own address, 127.0.0.`host`.
  explicit TcpClient(std::uint16_t port, std::uint32_t host = 1) : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
    const timeval patience{60, 0};
    ::setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    const int atOnce = 1;
    ::setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &atOnce, sizeof atOnce);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK - 1 + host);
    EXPECT_EQ(::bind(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  }
  TcpClient(const TcpClient&) = delete;
  TcpClient& operator=(const TcpClient&) = delete;
  ~TcpClient() { ::close(socket_); }

  void write(const std::string& bytes) { EXPECT_TRUE(tryWrite(bytes)); }
  /// False if the peer doesn't take everything.
  bool tryWrite(const std::string& bytes) {
    return ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
  }
  /// Writes as much as the peer takes at once and returns the number of bytes; -1 if the connection has ended.
  ssize_t push(const std::string& bytes) {
    return ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  }
  /// True if data has arrived or the connection has ended.
  bool hasNews() {
    char byte;
    return ::recv(socket_, &byte, 1, MSG_PEEK | MSG_DONTWAIT) >= 0;
  }
  /// Returns once the peer's system has everything that was sent.
  void waitUntilDelivered() {
    for (int unsent = 1; unsent != 0; std::this_thread::yield()) ASSERT_EQ(::ioctl(socket_, SIOCOUTQ, &unsent), 0);
  }
  /// Discards everything received so far.
  void drain() {
    char bytes[4096];
    while (::recv(socket_, bytes, sizeof bytes, MSG_DONTWAIT) > 0) {
    }
  }
  /// Limits the send buffer, so that this client soon notices what the peer doesn't take.
  void keepLittleUnsent() {
    const int size = 16 << 10;
    ::setsockopt(socket_, SOL_SOCKET, SO_SNDBUF, &size, sizeof size);
  }
  /// Limits the receive buffer, so that the system takes little that this client doesn't read.
  void keepLittleUnread() {
    const int size = 16 << 10;
    ::setsockopt(socket_, SOL_SOCKET, SO_RCVBUF, &size, sizeof size);
  }
  /// Stops sending. The server then closes the connection.
  void finish() { ::shutdown(socket_, SHUT_WR); }
  /// The next bytes that come; empty at the end of the connection, which must come otherwise.
  std::string readSome() {
    char bytes[4096];
    const ssize_t size = ::recv(socket_, bytes, sizeof bytes, 0);
    EXPECT_TRUE(size >= 0 || errno == ECONNRESET) << "the connection stays open";
    return {bytes, static_cast<std::size_t>(std::max<ssize_t>(size, 0))};
  }
  /// Reads up to the end of the connection, which must come.
  std::string readToEnd() {
    std::string all;
    for (std::string more = readSome(); !more.empty(); more = readSome()) all += more;
    return all;
  }
  /// Reads up to the end of the connection. True if that is a reset.
  bool isResetAtTheEnd() {
    char bytes[4096];
    ssize_t size = 0;
    do {
      size = ::recv(socket_, bytes, sizeof bytes, 0);
    } while (size > 0);
    return size < 0 && errno == ECONNRESET;
  }
  /// True if the server has closed the connection and nothing is left to read.
  bool isCutOff() {
    char byte;
    if (atEnd) return true;
    const ssize_t size = ::recv(socket_, &byte, 1, 0);
    return size == 0 || (size < 0 && errno == ECONNRESET);
  }
  /// True if the server has ended the connection by now. Drops what has come.
  bool hasEnded() {
    drain();
    char byte;
    const ssize_t size = ::recv(socket_, &byte, 1, MSG_DONTWAIT);
    return size == 0 || (size < 0 && errno != EAGAIN && errno != EWOULDBLOCK);
  }
  /// Closes the connection with a reset.
  void reset() {
    const linger now{1, 0};
    ::setsockopt(socket_, SOL_SOCKET, SO_LINGER, &now, sizeof now);
    ::close(socket_);
    socket_ = -1;
  }

 protected:
  bool atEnd = false;
  int socket_;
};

/// The frame of a login without a password.
inline std::string login(const std::string& name, const std::string& version = KELVORA_VERSION) {
  return frameOf(wire::msgLogin, {name, "", "0", version});
}

/// A client that speaks the game's protocol.
class Client : public TcpClient {
 public:
  using TcpClient::TcpClient;

  void say(std::int16_t id, const std::vector<std::string>& fields) { write(frameOf(id, fields)); }
  void login(const std::string& name, const std::string& version = KELVORA_VERSION) {
    write(server::login(name, version));
  }

  /// The next frame's id and text; empty at the end of the connection or after a timeout.
  std::string read() {
    while (true) {
      const std::size_t end = arrived_.find(wire::frameEnd);
      if (end != std::string::npos) {
        const std::string text = arrived_.substr(1, end - 1);
        arrived_.erase(0, end + 1);
        return text;
      }
      char bytes[4096];
      const ssize_t size = ::recv(socket_, bytes, sizeof bytes, 0);
      if (size == 0) atEnd = true;
      if (size <= 0) return {};
      arrived_.append(bytes, static_cast<std::size_t>(size));
    }
  }
  /// The first frame with that id. Skips others.
  std::string readUntil(wire::MessageId id) {
    skipped = 0;
    for (std::string text = read(); !text.empty(); text = read()) {
      if (static_cast<unsigned char>(text[0]) == id) return text.substr(1);
      ++skipped;
    }
    return "nothing";
  }

  int skipped = 0;

 private:
  std::string arrived_;
};

}  // namespace kelvora::server
