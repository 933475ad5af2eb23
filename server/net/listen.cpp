#include "server/net/listen.h"

#include <sstream>
#include <system_error>

namespace kelvora::server {

asio::ip::tcp::acceptor listenOn(asio::io_context& context, const std::string& address, std::uint16_t port) {
  try {
    asio::ip::tcp::resolver resolver(context);
    return {context, resolver.resolve(address, std::to_string(port)).begin()->endpoint()};
  } catch (const std::system_error& error) {
    throw std::system_error(error.code(), "cannot listen on " + address + ":" + std::to_string(port));
  }
}

std::string endpointText(const asio::ip::tcp::acceptor& acceptor) {
  std::ostringstream text;
  text << acceptor.local_endpoint();
  return text.str();
}

}  // namespace kelvora::server
