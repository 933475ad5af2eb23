#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "platform/sockets/hostAddresses.h"

namespace kelvora {

/// The system's end of a TCP connection. Never blocks. News of it signals the network once. More follow only after
/// `receive` or `send` has found that there is nothing left to do.
class Wire {
 public:
  enum class Step { Done, NotYet, Closed, Broken };
  struct Received {
    Step step;              ///< Done if there are bytes. Closed also if the peer has reset the connection
    std::size_t count = 0;  ///< bytes
  };

  Wire() = default;
  ~Wire() { close(); }
  Wire(const Wire&) = delete;
  Wire& operator=(const Wire&) = delete;

  /// Begins to connect, after closing the previous connection. False if it fails at once.
  bool connect(const HostAddress& address);
  /// Whether the connection has been established: Done, NotYet or Broken. Call it on each news. Once Done, it stays
  /// so: `receive` tells of later failures.
  Step connecting();
  Received receive(std::span<char> buffer) const;
  /// Returns the number of bytes that the system has taken. `receive` tells why it took none.
  std::size_t send(std::string_view bytes) const;
  void close();
  bool isOpen() const { return socket_ != none; }

 private:
  static constexpr std::intptr_t none = -1;

  std::intptr_t socket_ = none;  ///< a file descriptor, or Windows's socket
  bool isConnected_ = false;
};

}  // namespace kelvora
