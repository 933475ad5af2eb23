#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/winsock.h"

namespace kelvora {

/// The address of the web host, which serves the list of games and the update file.
struct WebAddress {
  std::string host;  ///< name or IP address, without port
  int port = 80;

  /// The address as HTTP writes it: the host, followed by a colon and the port unless it is 80. An IPv6 address is in
  /// brackets.
  std::string authority() const;

  friend bool operator==(const WebAddress&, const WebAddress&) = default;
};

/// Parses "host" or "host:port". An IPv6 address needs brackets ("[::1]:8080") if a port follows. An invalid port (not
/// 1 to 65535) counts as 80.
WebAddress parseWebAddress(std::string_view text);
/// The web host used by this run of the program.
WebAddress webAddress();

/// Maximum size of an answer from the web host, in bytes. The rest is dropped, so an endless answer can't fill the
/// memory.
inline constexpr std::size_t maxAnswerSize = std::size_t{1024} * 1024;

/// Reads the data of one data event: at most 49 reads, while the socket is connected.
std::string readArrived(Winsock& socket);
/// Appends as much as fits an answer and drops the rest. False if anything was dropped.
bool appendAnswer(std::string& answer, std::string_view arrived);

}  // namespace kelvora
