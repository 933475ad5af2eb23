#include "server/net/listener.h"

#include <sstream>
#include <system_error>
#include <utility>

namespace kelvora::server {

namespace {

asio::ip::tcp::acceptor listenOn(asio::io_context& context, const std::string& address, std::uint16_t port) {
  try {
    asio::ip::tcp::resolver resolver(context);
    return {context, resolver.resolve(address, std::to_string(port)).begin()->endpoint()};
  } catch (const boost::system::system_error& error) {
    throw std::system_error(error.code(), "cannot listen on " + address + ":" + std::to_string(port));
  }
}

}  // namespace

Listener::Listener(asio::io_context& context, const std::string& address, std::uint16_t port, Handlers handlers)
    : acceptor_(listenOn(context, address, port)), handlers_(std::move(handlers)) {
  acceptMore();
}

void Listener::resume() {
  if (!std::exchange(isAccepting_, true)) acceptMore();
}

void Listener::close() {
  error_code ignored;
  acceptor_.close(ignored);
}

std::string Listener::endpointText() const {
  std::ostringstream text;
  text << acceptor_.local_endpoint();
  return text.str();
}

void Listener::acceptMore() {
  acceptor_.async_accept([this](error_code error, asio::ip::tcp::socket socket) {
    if (!acceptor_.is_open()) return;
    if (!error) handlers_.onConnection(std::move(socket));
    if (!error || error == asio::error::connection_aborted) return acceptMore();
    // Trying again at once would loop for ever.
    isAccepting_ = false;
    handlers_.onFailure(error.message());
  });
}

}  // namespace kelvora::server
