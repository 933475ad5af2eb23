#pragma once

#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "server/arena/arena.h"
#include "server/bots/botKeeper.h"
#include "server/config/options.h"
#include "server/lists/listPages.h"
#include "server/lists/publisher.h"
#include "server/net/connection.h"
#include "server/net/door.h"
#include "server/net/listener.h"
#include "server/net/stallWatch.h"
#include "server/web/site.h"

namespace kelvora::server {

/// The arena on the network: players over TCP and WebSocket, and the web files. Everything runs on the one thread that
/// runs the context.
class GameServer : private ArenaOutput {
 public:
  static constexpr std::size_t maxConnections = 96;  ///< whatever they speak
  /// Files that may have to be open at a time: the connections, files that are being served, and the process's own.
  static constexpr std::size_t descriptors = 2 * maxConnections + 64;

  /// Listens at once. Options that can't be met throw std::runtime_error or a class of it.
  GameServer(asio::io_context& context, const Options& options, std::function<void(const std::string&)> log);

  /// "127.0.0.1:2010"
  std::string endpointText() const { return listener_.endpointText(); }
  /// The same of the second port; empty if none was asked for.
  std::string webEndpointText() const { return webListener_ ? webListener_->endpointText() : ""; }
  std::uint16_t port() const { return listener_.port(); }
  /// Tells the players, and closes everything once they have heard it or had `Connection::goodbyeTime` to, so that the
  /// context runs out of work. Then calls `whenDone`. A second call closes everything at once.
  void stop(std::function<void()> whenDone = {});

 private:
  struct Guest {
    std::shared_ptr<Connection> connection;
    asio::ip::address address;
    std::string network;  ///< that is held to the door's limits; empty while a proxy hasn't named it
  };

  void send(ClientId client, const std::string& frame) override;
  void hangUp(ClientId client) override;
  void log(const std::string& line) override { log_(line); }

  Listener::Handlers listenerHandlers();
  void welcome(asio::ip::tcp::socket socket);
  /// Counts the guest at the door as coming from there; false if it must go.
  bool admit(Guest& guest, const asio::ip::address& address);
  void beginGame(ClientId client);
  HttpAnswer answer(ClientId client, const HttpRequest& request);
  HttpAnswer homePage() const;
  void closed(ClientId client, const std::string& reason);
  /// Closes the oldest connection without a player; false if there is none.
  bool makeRoom();
  void tickMore();
  void closeAll();
  void finishStop();
  /// What lists say of this server. Bots make room for people and don't count.
  HostEntry hostEntry() const;
  /// Tells the other lists how many players there are, if that has changed.
  void publish();
  Millis now() const;

  const Options options_;
  std::function<void(const std::string&)> log_;
  std::optional<asio::ip::address> trustedProxy_;
  Site site_;
  Listener listener_;
  std::optional<Listener> webListener_;
  asio::steady_timer timer_;
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  Arena arena_;
  BotKeeper bots_;
  ListPages list_;
  std::unique_ptr<Publisher> publisher_;  // null if there is nowhere to announce to
  std::map<ClientId, Guest> guests_;
  Door door_;
  StallWatch stallWatch_;
  ClientId lastClient_ = 0;
  std::optional<std::size_t> publishedPlayers_;
  bool stopped_ = false;
  std::function<void()> whenStopped_;
};

}  // namespace kelvora::server
