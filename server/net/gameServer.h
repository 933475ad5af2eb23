#pragma once

#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <ctime>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "server/agones/sidecar.h"
#include "server/arena/arena.h"
#include "server/bots/botKeeper.h"
#include "server/config/addressList.h"
#include "server/config/options.h"
#include "server/http/homePage.h"
#include "server/http/site.h"
#include "server/lists/listPages.h"
#include "server/lists/publisher.h"
#include "server/moderation/moderation.h"
#include "server/moderation/networkLimit.h"
#include "server/net/connection.h"
#include "server/net/door.h"
#include "server/net/figures.h"
#include "server/net/listener.h"
#include "server/net/roundArchive.h"
#include "server/net/stallWatch.h"
#include "server/net/waitingRoom.h"
#include "server/net/worker.h"
#include "server/records/recordBook.h"

namespace kelvora::server {

/// The arena on the network: players over TCP and WebSocket, and the web files. Everything runs on the thread that runs
/// the context.
class GameServer : private ArenaOutput, private ModerationHost {
 public:
  static constexpr std::size_t maxConnections = 96;  ///< of any kind
  /// Files that may be open at a time: connections, files being served, and the process's own.
  static constexpr std::size_t descriptors = 2 * maxConnections + WaitingRoom::maxWaiting + 64;

  using WriteLine = std::function<void(const std::string&)>;
  /// Listens at once. Throws std::runtime_error or a derived class if the options can't be met. `logAct` gets what
  /// moderators do; without it, `log` does.
  GameServer(asio::io_context& context, const Options& options, WriteLine log, WriteLine logAct = {});

  /// "127.0.0.1:2010"
  std::string endpointText() const { return listener_.endpointText(); }
  /// The same for the second port; empty if there is none.
  std::string webEndpointText() const { return webListener_ ? webListener_->endpointText() : ""; }
  /// The same for the spectators' port; empty if there is none.
  std::string spectatorEndpointText() const { return spectatorListener_ ? spectatorListener_->endpointText() : ""; }
  std::uint16_t port() const { return listener_.port(); }
  /// Notifies the players, then closes everything once they have got the message or `Connection::goodbyeTime` has
  /// passed, so that the context runs out of work. Finally calls `whenDone`. A second call closes everything at once.
  void stop(std::function<void()> whenDone = {});
  /// Stops once the round is over, nobody is left or the time has passed. Until then the game goes on without
  /// newcomers.
  void drain(std::chrono::seconds time, std::function<void()> whenDone);
  /// Reads the bans again.
  void reread() { moderation_.reread(now()); }

 private:
  using Clock = Connection::Clock;

  struct Guest {
    std::shared_ptr<Connection> connection;
    asio::ip::address address;
    std::string network;       ///< the one that the door's limits apply to; empty until a proxy has named it
    bool isForwarded = false;  ///< a proxy may name another client with each request
    bool isDirect = false;     ///< nobody is in between: no trusted proxy, and no page that opened a WebSocket
    bool isPlaying = false;    ///< speaks the game's protocol
    Role role = Role::player;  ///< what it may log in for
  };

  void send(ClientId client, const std::string& frame) override;
  void hangUp(ClientId client) override;
  void log(const std::string& line) override { log_(line); }
  void logAct(const std::string& line) override { logAct_(line); }
  void dropped(Drop what) override { figures_.addDrop(what); }
  void command(ClientId client, const std::string& line) override { commands_.emplace_back(client, line); }
  Outcome mayEnter(ClientId client) override;
  NameVerdict nameVerdict(ClientId client, const std::string& name, const std::string& password) override;
  void scored(const std::vector<Score>& scores, bool isRoundOver) override { records_.add(scores, isRoundOver, now()); }
  void watches(ClientId client) override;
  std::string muteReason(ClientId client) override { return moderation_.muteReason(network(client)); }
  std::string network(ClientId client) const override;
  Seconds wallClock() const override { return std::time(nullptr); }
  bool runAside(std::function<void()> work, std::function<void()> finish) override;

  // Admission (gameServerDoor.cpp).
  void welcome(Socket socket, Role role);
  /// True if the newcomer has been dealt with. False if they exceed their address's limits.
  bool enter(Newcomer& newcomer);
  /// Tells that a connection of this network was turned away.
  void refuse(const std::string& network);
  /// Counts the connection for the network of this address, and no longer for another one. A connection that isn't new
  /// takes a place, but doesn't count for its network's rate. False if the network's limits are exceeded. If it has all
  /// of its places, a connection kept between two requests makes room.
  bool admit(Guest& guest, const asio::ip::address& address, bool isNew = true);
  void forwarded(ClientId client, const asio::ip::address& address);
  /// Makes sure that another connection may come in: closes one that has been hung up, or the oldest without a player.
  /// False if there is none.
  bool makeRoom();

  // HTTP (gameServerAnswers.cpp).
  HttpAnswer countedAnswer(ClientId client, const HttpRequest& request);
  HttpAnswer answer(ClientId client, const HttpRequest& request);
  HttpAnswer metrics(const Guest& guest, const HttpRequest& request) const;
  HttpAnswer homePage() const;
  std::vector<RecordTable> recordTables() const;

  Listener::Handlers listenerHandlers(Role role = Role::player);
  /// Logs that the game doesn't accept the port, if it doesn't.
  void warnOfPort(std::uint16_t port) const;
  void beginGame(ClientId client);
  void received(ClientId client, std::string_view text);
  /// The number of people, without bots, who make room for them.
  std::size_t people() const;
  void closed(ClientId client, const std::string& reason);
  void tickMore();
  bool isDrained() const;
  void closeAll();
  void finishStop();
  std::unique_ptr<Sidecar> startSidecar();
  /// This server's entry in lists.
  HostEntry hostEntry() const;
  /// Tells other lists, and Agones, the number of players.
  void publish();
  /// The arena's time.
  Millis at(Clock::time_point time) const;
  Millis now() const { return at(Clock::now()); }

  const Options options_;
  WriteLine log_;
  WriteLine logAct_;
  std::optional<asio::ip::address> trustedProxy_;
  AddressList metricsFor_;
  AddressList unlimitedFor_;
  Site site_;
  Listener listener_;
  std::optional<Listener> webListener_;
  std::optional<Listener> spectatorListener_;
  asio::io_context& context_;
  asio::steady_timer timer_;
  const Clock::time_point start_ = Clock::now();
  Arena arena_;
  BotKeeper bots_;
  RecordBook records_;
  Moderation moderation_;
  RoundArchive rounds_;
  std::vector<std::pair<ClientId, std::string>> commands_;  // of the frame in progress
  ListPages list_;
  std::vector<std::unique_ptr<Publisher>> publishers_;  // one for each list to announce to
  std::unique_ptr<Sidecar> sidecar_;                    // null outside of Agones
  std::optional<Place> place_;                          // that Agones has told
  std::map<ClientId, Guest> guests_;
  Door door_;
  WaitingRoom waitingRoom_;
  StallWatch stallWatch_;
  Figures figures_;
  ClientId lastClient_ = 0;
  bool stopped_ = false;
  std::optional<Clock::time_point> drainsUntil_;
  std::function<void()> whenStopped_;
  NetworkLimit nameLogins_{10, 6'000};
  Worker worker_;  // goes first, with its work done
};

}  // namespace kelvora::server
