#pragma once

#include <cstdint>
#include <string>

#include "tests/server/net/tcpClient.h"

namespace kelvora::server {

/// The server's answer to an HTTP request; empty if there is none.
struct WebAnswer {
  std::string status;  ///< the first line
  std::string head;    ///< with the first line, without the empty one
  std::string body;

  int code() const { return status.empty() ? 0 : std::stoi(status.substr(9, 3)); }
};

/// Sends a request from the address 127.0.0.`host`, and reads up to the end of the connection.
inline WebAnswer ask(std::uint16_t port, const std::string& request, std::uint32_t host = 1) {
  TcpClient client(port, host);
  client.tryWrite(request);
  const std::string all = client.readToEnd();
  const std::size_t end = all.find("\r\n\r\n");
  if (end == std::string::npos) return {};
  return {all.substr(0, all.find("\r\n")), all.substr(0, end), all.substr(end + 4)};
}

}  // namespace kelvora::server
