#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <string>
#include <vector>

#include "server/net/asio.h"

namespace kelvora::server {

/// A port that accepts connections, on every address that a name stands for.
class Listener {
 public:
  struct Handlers {
    std::function<void(Socket socket)> onConnection;
    /// Called when accepting begins to fail, usually for lack of descriptors. Nothing is accepted until `resume`.
    std::function<void(const std::string& reason)> onFailure;
    /// Called when accepting works again.
    std::function<void()> onRecovery;
  };

  /// Returns the addresses of a name, or the address that it is. Throws boost::system::system_error if there is none.
  using Resolver = std::vector<asio::ip::address> (*)(asio::io_context& context, const std::string& name);
  static std::vector<asio::ip::address> resolve(asio::io_context& context, const std::string& name);

  /// Listens at once. Port 0 is any free one. "::" is every address of the machine, in IPv4 as well. Skips those of a
  /// name's addresses that this machine lacks, unless it lacks all. Throws std::runtime_error for a bad address or
  /// port. Its text names both.
  Listener(asio::io_context& context, const std::string& address, std::uint16_t port, Handlers handlers,
           Resolver addressesOf = resolve);

  /// Accepts again after a failure. Does nothing otherwise.
  void resume();
  /// Stops listening. No handler is called afterwards.
  void close();
  std::uint16_t port() const { return port_; }
  /// "127.0.0.1:2010", or several with commas between them.
  std::string endpointText() const;

 private:
  struct Entrance {
    Acceptor acceptor;
    bool isAccepting = false;
  };

  void listenOn(const std::vector<asio::ip::address>& addresses);
  Acceptor opened(const asio::ip::tcp::endpoint& endpoint) const;
  /// Most systems' own choice is higher than any port that the game's clients accept.
  Acceptor openedOnFreePort(const asio::ip::address& address) const;
  void acceptMore(Entrance& entrance);

  asio::io_context& context_;
  std::uint16_t port_;
  std::list<Entrance> entrances_;
  Handlers handlers_;
  bool isFailing_ = false;
};

}  // namespace kelvora::server
