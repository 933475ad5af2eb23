#pragma once

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "server/arena/arena.h"
#include "server/bots/botKeeper.h"
#include "server/config/options.h"
#include "server/lists/publisher.h"
#include "server/net/connection.h"
#include "server/net/door.h"
#include "server/net/stallWatch.h"
#include "server/net/webServer.h"

namespace kelvora::server {

/// The arena on the network. Everything but the web server runs on the one thread that runs the context.
class GameServer : private ArenaOutput {
 public:
  static constexpr std::size_t mostConnections = 64;
  /// Files that may have to be open at a time: the connections of game and list, and what the process itself has.
  static constexpr std::size_t descriptors = mostConnections + WebServer::mostConnections + 64;
  static constexpr std::chrono::seconds longestSilence{120};  ///< the game sends its position all the time

  /// Listens at once; an address that is no good throws std::system_error.
  GameServer(asio::io_context& context, const Options& options, std::function<void(const std::string&)> log);

  /// "127.0.0.1:2010"
  std::string endpointText() const;
  /// The same of the web server; empty if none was asked for.
  std::string webEndpointText() const { return web_ ? web_->endpointText() : ""; }
  std::uint16_t port() const { return acceptor_.local_endpoint().port(); }
  /// Tells the players, and closes everything once they have heard it or had two seconds to, so that the context runs
  /// out of work; then calls `whenDone`. A second call closes everything at once.
  void stop(std::function<void()> whenDone = {});

 private:
  void send(ClientId client, const std::string& frame) override;
  void hangUp(ClientId client) override;
  void log(const std::string& line) override { log_(line); }

  void acceptMore();
  void welcome(asio::ip::tcp::socket socket);
  void closed(ClientId client, const std::string& network, const std::string& reason);
  /// Of the connections that have not logged in, closes the oldest; false if there is none.
  bool makeRoom();
  void tickMore();
  void closeAll();
  void finishStop();
  /// Tells the lists how many players there are, if that has changed.
  void publish();
  Millis now() const;

  const Options options_;
  std::function<void(const std::string&)> log_;
  asio::ip::tcp::acceptor acceptor_;
  asio::steady_timer timer_;
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  Arena arena_;
  BotKeeper bots_;
  std::unique_ptr<WebServer> web_;        // null if none was asked for
  std::unique_ptr<Publisher> publisher_;  // likewise
  std::map<ClientId, std::shared_ptr<Connection>> connections_;
  std::map<ClientId, Millis> hungUp_;  // since when
  Door door_;
  StallWatch stallWatch_;
  ClientId lastClient_ = 0;
  std::optional<std::size_t> publishedPlayers_;  // people: bots make room for them
  bool isAccepting_ = true;
  bool stopped_ = false;
  std::function<void()> whenStopped_;
};

}  // namespace kelvora::server
