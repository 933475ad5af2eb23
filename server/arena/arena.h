#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "base/outcome.h"
#include "server/arena/arenaOutput.h"
#include "server/arena/arenaRules.h"
#include "server/arena/pendingCaptures.h"
#include "server/arena/player.h"
#include "server/arena/playerView.h"
#include "server/arena/roundClock.h"

namespace kelvora::server {

/// The rules of the game on plain state: who is in, what they tell each other and what they are told. It knows no
/// sockets and no clock; the time comes with every call.
class Arena {
 public:
  static constexpr int colourCount = 6;
  static constexpr std::size_t longestName = 32;  ///< bytes
  static constexpr Millis loginTimeLimit = 10'000;
  static constexpr Millis colourPatience = 3'000;  ///< for which a login waits for a bot to give up the wanted colour
  static constexpr Millis firstPingDelay = 1'000;
  static constexpr Millis pingInterval = 12'000;

  /// `version` is the one that a client must have; an empty `password` admits everybody.
  Arena(ArenaOutput& output, std::string version, std::string password, std::uint32_t seed,
        const ArenaRules& rules = {});

  void connected(ClientId client, Millis now);
  /// One frame's text, id and fields. What makes no sense is dropped.
  void received(ClientId client, std::string_view text, Millis now);
  /// The connection is gone, by whichever side.
  void disconnected(ClientId client);
  /// To be called several times a second.
  void tick(Millis now);

  std::size_t playerCount() const;
  /// Everybody who is in, in the order of their connections.
  std::vector<PlayerView> players(Millis now) const;
  /// The colours that people who want to log in need, and bots have. Their bots are to be disconnected; the logins wait
  /// and are tried again at each tick.
  std::vector<std::int16_t> wantedColours() const;
  /// False in the intermission between two rounds, in which everybody is dead.
  bool isRoundRunning() const { return clock_.isRunning(); }

 private:
  using Fields = std::vector<std::string_view>;
  struct Client {
    Millis since;
    std::optional<Player> player;  ///< once logged in
    std::string login{};           ///< its text, while it waits for somebody to make room
    Millis loginSince = 0;
    std::int16_t wantedColour = -1;
  };

  void login(ClientId client, std::string_view text, Millis now);
  void retryLogins(Millis now);
  bool hasBots() const;
  bool mustWait(ClientId client, std::string_view preferred, Millis now);
  Outcome check(ClientId client, const Fields& fields) const;
  bool isColourFree(std::int16_t colour) const;
  bool hasFreeColour() const;
  std::int16_t chooseColour(std::string_view preferred) const;
  std::int16_t nextNode();
  Spot startSpot();
  void sendJoined(ClientId client, const Player& player);
  /// A player who goes is told to have left once no capture waits for him.
  void letGo(Player&& player);
  void letLeaversGo();

  void handle(ClientId client, Player& player, int id, const Fields& fields, Millis now);
  void pingReply(ClientId client, Player& player, Millis now);
  void chat(ClientId client, Player& player, const Fields& fields, Millis now);

  void position(Player& player, const Fields& fields, Millis now);
  bool isWithinReach(Player& player, double distance, Millis now) const;
  void captureEnclosed(Player& winner, Millis now);
  /// The vertex by which a capture is told; nothing if there is none that may be named.
  std::optional<Spot> vertexToName(const Player& winner, std::size_t firstOfLoop) const;

  struct Hit {
    Player* winner;
    Player* loser;
  };
  /// What the mover's weapons do to the others, and theirs to him on his way from there.
  void strikeOnTheWay(Player& mover, Point from, Millis now);
  void strikeAll(Millis now);
  void strike(const std::vector<Hit>& hits, Millis now);
  void pulse(Player& owner, Millis now);
  /// Before its time, which everybody is told. One that is not running is left alone.
  void endPowerup(Player& player, int item, Millis now);

  /// Clients carry a capture out when the named vertex ends, and at once if there is none.
  void kill(Player& winner, Player& loser, const std::optional<Spot>& vertex, Millis now);
  void spawn(ClientId client, Player& player, Millis now);
  void respawn(Player& player);
  void respawnWhoIsDue(Millis now);
  Millis respawnWait(const Player& player, Millis now) const;

  void passTime(Millis now);
  void endRoundIfWon();
  void endRound();
  void beginRound();
  std::string roundResult() const;
  /// "1 second", "3 seconds": begun ones count.
  static std::string secondsText(Millis time);
  /// To a client of its own player.
  void sendDead(ClientId client, const Player& player);

  void buyOrSell(ClientId client, Player& player, bool isSale, const Fields& fields, Millis now);
  void activate(ClientId client, Player& player, const Fields& fields, Millis now);
  void payIncome(Player& player, Millis now);
  /// Gives credits; everybody is told.
  void credit(Player& player, Entry entry, std::int64_t amount);
  /// To everybody; a trade has told the trader already.
  void sendFunds(const Player& player, std::optional<ClientId> trader = std::nullopt);
  static std::vector<std::string> fundsOf(const Player& player);

  bool hasPeople() const;
  std::vector<Player*> inGame();
  std::map<ClientId, Client>::iterator findNode(std::int16_t node);
  void sendToAll(std::int16_t id, const std::vector<std::string>& fields);
  void sendTo(ClientId client, std::int16_t id, const std::vector<std::string>& fields);

  ArenaOutput& output_;
  const std::string version_;
  const std::string password_;
  const ArenaRules rules_;
  std::mt19937 random_;
  std::map<ClientId, Client> clients_;
  std::vector<Player> leavers_;  // gone, and not told yet
  PendingCaptures pending_;
  RoundClock clock_;
  Millis clockSet_ = 0;
  std::int64_t captures_ = 0;  // of all rounds
  std::int16_t lastNode_ = 0;
};

}  // namespace kelvora::server
