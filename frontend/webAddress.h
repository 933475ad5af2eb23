#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/winsock.h"

namespace kelvora {

/// Where the publisher's web host is found.
struct WebAddress {
  std::string host;  ///< name or number, without a port
  int port = 80;

  /// How HTTP names it: the host, and behind a colon its port if that is not 80. A number with colons stands in
  /// brackets.
  std::string authority() const;

  friend bool operator==(const WebAddress&, const WebAddress&) = default;
};

/// Reads "host" or "host:port"; a number with colons stands in brackets ("[::1]:8080") if a port follows. What is no
/// port from 1 to 65535 counts as 80.
WebAddress parseWebAddress(std::string_view text);
/// The web host that this run of the program asks.
WebAddress webAddress();

/// Bytes that are kept of one answer of the web host; a host that never ends costs no more memory than this.
inline constexpr std::size_t longestAnswer = std::size_t{1024} * 1024;

/// What a data event has brought, read in fewer than 50 steps and only while the socket is connected.
std::string readArrived(Winsock& socket);
/// Appends what still fits an answer and drops the rest; false if something had to be dropped.
bool appendAnswer(std::string& answer, std::string_view arrived);

}  // namespace kelvora
