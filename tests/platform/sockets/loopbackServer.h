#pragma once

#ifdef _WIN32
#include <winsock2.h>
// First.
#include <windows.h>
#include <ws2tcpip.h>
#else
#include <fcntl.h>
#include <linux/sockios.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>
#endif
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <thread>

#include "platform/sockets/networkSignal.h"
#include "platform/sockets/streamSocket.h"

namespace kelvora {

constexpr int networkPatience = 60'000;  // ms

#ifdef _WIN32

using SystemSocket = SOCKET;
using SystemSize = int;
constexpr SystemSocket noSocket = INVALID_SOCKET;

inline void closeSocket(SystemSocket socket) { closesocket(socket); }
inline void stopBlocking(SystemSocket socket) {
  u_long isNonBlocking = 1;
  ioctlsocket(socket, static_cast<long>(FIONBIO), &isNonBlocking);
}
inline bool waitUntilReadable(SystemSocket socket) {
  WSAPOLLFD state{socket, POLLRDNORM, 0};
  return WSAPoll(&state, 1, networkPatience) == 1;
}
/// Waits until the network is signaled. False if that takes longer than a minute.
inline bool waitForNews() {
  return WaitForSingleObject(reinterpret_cast<HANDLE>(networkSignal()), networkPatience) == WAIT_OBJECT_0;
}

#else

using SystemSocket = int;
using SystemSize = std::size_t;
constexpr SystemSocket noSocket = -1;
constexpr int SD_SEND = SHUT_WR;

inline void closeSocket(SystemSocket socket) { ::close(socket); }
inline void stopBlocking(SystemSocket socket) { fcntl(socket, F_SETFL, O_NONBLOCK); }
inline bool waitUntilReadable(SystemSocket socket) {
  pollfd state{socket, POLLIN, 0};
  return poll(&state, 1, networkPatience) == 1;
}
/// Waits until the network is signaled. False if that takes longer than a minute.
inline bool waitForNews() { return waitUntilReadable(static_cast<int>(networkSignal())); }

#endif

/// This process's socket that is connected to a server's port.
inline SystemSocket socketConnectedTo(int port) {
  constexpr SystemSocket limit = 65'536;
  for (SystemSocket socket = 0; socket < limit; ++socket) {
    sockaddr_in peer{};
    socklen_t size = sizeof peer;
    if (getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &size) != 0 || peer.sin_family != AF_INET) continue;
    if (ntohs(peer.sin_port) == port) return socket;
  }
  return noSocket;
}

/// Raises events until the condition holds, at each signal. False if there is none for a minute.
template <class Condition>
bool serveSocketsUntil(Condition isDone) {
  while (!isDone()) {
    if (!waitForNews()) return false;
    serveSockets();
  }
  return true;
}

/// A server on the loopback interface with at most one connection, the line.
class LoopbackServer {
 public:
  explicit LoopbackServer(int family = AF_INET) {
    networkSignal();  // starts the system's sockets
    socket_ = ::socket(family, SOCK_STREAM, IPPROTO_TCP);
    sockaddr_in6 six{};
    six.sin6_family = AF_INET6;
    six.sin6_addr = in6addr_loopback;
    sockaddr_in four{};
    four.sin_family = AF_INET;
    four.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    isListening = family == AF_INET ? listenAt(four, &sockaddr_in::sin_port) : listenAt(six, &sockaddr_in6::sin6_port);
  }
  ~LoopbackServer() {
    hangUp();
    stopListening();
  }
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  /// The next connection becomes the line.
  void accept() {
    hangUp();
    ASSERT_TRUE(waitUntilReadable(socket_));
    line_ = ::accept(socket_, nullptr, nullptr);
    ASSERT_NE(line_, noSocket);
    stopBlocking(line_);
  }
  void stopListening() {
    if (socket_ != noSocket) closeSocket(socket_);
    socket_ = noSocket;
  }

  /// Sends what the system takes at once and returns the number of bytes.
  std::size_t push(std::string_view bytes) const {
    const auto count = ::send(line_, bytes.data(), static_cast<SystemSize>(bytes.size()), 0);
    return count > 0 ? static_cast<std::size_t>(count) : 0;
  }
  /// Sends few bytes, and returns once the other end's system has them.
  void send(std::string_view bytes) const {
    EXPECT_EQ(push(bytes), bytes.size());
#ifndef _WIN32
    for (int unsent = 1; unsent != 0; std::this_thread::yield()) ASSERT_EQ(::ioctl(line_, SIOCOUTQ, &unsent), 0);
#endif
  }
  std::string receive(std::size_t count) const {
    std::string bytes;
    while (bytes.size() < count && waitUntilReadable(line_)) {
      std::string portion(count - bytes.size(), '\0');
      const auto got = recv(line_, portion.data(), static_cast<SystemSize>(portion.size()), 0);
      if (got <= 0) break;
      bytes.append(portion, 0, static_cast<std::size_t>(got));
    }
    return bytes;
  }
  void endSending() const { shutdown(line_, SD_SEND); }
  bool isClosedByPeer() const {
    char byte = 0;
    return waitUntilReadable(line_) && recv(line_, &byte, 1, 0) <= 0;
  }
  void hangUp() {
    if (line_ != noSocket) closeSocket(line_);
    line_ = noSocket;
  }
  /// Ends the line with a reset instead of an orderly close.
  void reset() {
    linger atOnce{};
    atOnce.l_onoff = 1;
    setsockopt(line_, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&atOnce), sizeof atOnce);
    hangUp();
  }

  int port = 0;
  bool isListening = false;  ///< false if the machine lacks the family

 private:
  template <class Address, class Port>
  bool listenAt(Address address, Port Address::*portOfIt) {
    auto* system = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof address;
    if (bind(socket_, system, size) != 0 || listen(socket_, 8) != 0) return false;
    getsockname(socket_, system, &size);
    port = ntohs(address.*portOfIt);
    return true;
  }

  SystemSocket socket_ = noSocket;
  SystemSocket line_ = noSocket;
};

}  // namespace kelvora
