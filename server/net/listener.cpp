#include "server/net/listener.h"

#include <algorithm>
#include <boost/asio/ip/v6_only.hpp>
#include <random>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "server/net/errorText.h"
#include "server/system/process.h"

namespace kelvora::server {

namespace {

/// True if the machine doesn't have the address, or lacks its whole family.
bool isMissing(error_code error) {
  return error == asio::error::address_family_not_supported || error == boost::system::errc::address_not_available;
}

std::string reasonOf(error_code error) {
  if (error == asio::error::host_not_found) return "there is no such host";
  if (error == asio::error::host_not_found_try_again) return "the name server doesn't answer";
  return errorText(error);
}

}  // namespace

std::vector<asio::ip::address> Listener::resolve(asio::io_context& context, const std::string& name) {
  asio::ip::tcp::resolver resolver(context);
  std::vector<asio::ip::address> addresses;
  for (const auto& entry : resolver.resolve(name, "")) addresses.push_back(entry.endpoint().address());
  return addresses;
}

Listener::Listener(asio::io_context& context, const std::string& address, std::uint16_t port, Handlers handlers,
                   Resolver addressesOf)
    : context_(context), port_(port), handlers_(std::move(handlers)) {
  try {
    listenOn(addressesOf(context, address));
  } catch (const boost::system::system_error& error) {
    throw std::runtime_error("cannot listen on " + address + ":" + std::to_string(port) + ": " +
                             reasonOf(error.code()));
  }
  resume();
}

void Listener::listenOn(const std::vector<asio::ip::address>& addresses) {
  error_code missing;
  for (auto address = addresses.begin(); address != addresses.end(); ++address) {
    if (std::find(addresses.begin(), address, *address) != address) continue;  // a name can list an address twice
    try {
      entrances_.push_back({port_ == 0 ? openedOnFreePort(*address) : opened({*address, port_})});
      port_ = entrances_.back().acceptor.local_endpoint().port();
    } catch (const boost::system::system_error& error) {
      if (!isMissing(error.code())) throw;
      missing = error.code();
    }
  }
  if (entrances_.empty()) throw boost::system::system_error(missing);
}

Acceptor Listener::openedOnFreePort(const asio::ip::address& address) const {
  std::random_device random;
  std::uniform_int_distribution<std::uint16_t> ports(10'000, 19'999);
  for (int tries = 0; tries < 100; ++tries) {
    try {
      return opened({address, ports(random)});
    } catch (const boost::system::system_error& error) {
      // Windows denies ports that another program has to itself.
      if (error.code() != asio::error::address_in_use && error.code() != asio::error::access_denied) throw;
    }
  }
  return opened({address, 0});
}

Acceptor Listener::opened(const asio::ip::tcp::endpoint& endpoint) const {
  Acceptor acceptor(context_, endpoint.protocol());
  if (mustReusePorts()) acceptor.set_option(Acceptor::reuse_address(true));
  // The system's default may be otherwise.
  if (endpoint.address().is_v6()) acceptor.set_option(asio::ip::v6_only(!endpoint.address().is_unspecified()));
  acceptor.bind(endpoint);
  acceptor.listen();
  return acceptor;
}

void Listener::resume() {
  for (Entrance& entrance : entrances_) {
    if (!std::exchange(entrance.isAccepting, true)) acceptMore(entrance);
  }
}

void Listener::close() {
  error_code ignored;
  for (Entrance& entrance : entrances_) entrance.acceptor.close(ignored);
}

std::string Listener::endpointText() const {
  std::ostringstream text;
  for (const Entrance& entrance : entrances_) {
    text << (text.tellp() > 0 ? ", " : "") << entrance.acceptor.local_endpoint();
  }
  return text.str();
}

void Listener::acceptMore(Entrance& entrance) {
  entrance.acceptor.async_accept([this, &entrance](error_code error, Socket socket) {
    if (!entrance.acceptor.is_open()) return;
    if (!error && std::exchange(isFailing_, false)) handlers_.onRecovery();
    if (!error) handlers_.onConnection(std::move(socket));
    if (!error || error == asio::error::connection_aborted) return acceptMore(entrance);
    // Trying again at once would loop forever.
    entrance.isAccepting = false;
    if (!std::exchange(isFailing_, true)) handlers_.onFailure(errorText(error));
  });
}

}  // namespace kelvora::server
