#include "frontend/webAddress.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "platform/backend.h"

namespace kelvora {

namespace {

constexpr int httpPort = 80;

int parsePort(std::string_view text) {
  constexpr int maxPort = 65535;
  int port = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, port);
  const bool isPort = error == std::errc{} && stop == end && 1 <= port && port <= maxPort;
  return isPort ? port : httpPort;
}

}  // namespace

std::string WebAddress::authority() const {
  const bool hasColons = host.find(':') != std::string::npos;
  const std::string name = hasColons ? "[" + host + "]" : host;
  return port == httpPort ? name : name + ":" + std::to_string(port);
}

WebAddress parseWebAddress(std::string_view text) {
  if (text.starts_with('[')) {
    const std::size_t bracket = std::min(text.find(']'), text.size());
    const std::string_view rest = text.substr(std::min(bracket + 1, text.size()));
    return {std::string(text.substr(1, bracket - 1)), rest.starts_with(':') ? parsePort(rest.substr(1)) : httpPort};
  }
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos || text.find(':', colon + 1) != std::string_view::npos) {
    return {std::string(text), httpPort};
  }
  return {std::string(text.substr(0, colon)), parsePort(text.substr(colon + 1))};
}

WebAddress webAddress() { return parseWebAddress(webHost()); }

std::string readArrived(Winsock& socket) {
  // Quirk Q-281: the rest isn't read until more data arrives.
  constexpr int maxReads = 49;
  std::string arrived;
  for (int reads = 0; reads < maxReads && socket.State() == sckConnected; ++reads) arrived += socket.GetData();
  return arrived;
}

bool appendAnswer(std::string& answer, std::string_view arrived) {
  const std::size_t room = maxAnswerSize - std::min(answer.size(), maxAnswerSize);
  answer += arrived.substr(0, room);
  return arrived.size() <= room;
}

}  // namespace kelvora
