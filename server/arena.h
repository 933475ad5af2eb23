#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "server/arenaRules.h"
#include "server/inventory.h"
#include "server/playerView.h"
#include "server/rateLimit.h"

namespace kelvora::server {

/// What the arena does to the outside world, from within its calls. It must not call back.
class ArenaOutput {
 public:
  virtual ~ArenaOutput() = default;
  virtual void send(ClientId client, const std::string& frame) = 0;
  /// Ends the connection once everything sent so far has gone out.
  virtual void hangUp(ClientId client) = 0;
  virtual void log(const std::string& line) = 0;
};

/// The rules of the game on plain state: who is in, what they tell each other and what they are told. It knows no
/// sockets and no clock; the time comes with every call.
class Arena {
 public:
  static constexpr int colourCount = 6;
  static constexpr std::size_t longestName = 32;  ///< bytes
  static constexpr Millis loginTimeLimit = 10'000;
  static constexpr Millis firstPingDelay = 1'000;
  static constexpr Millis pingInterval = 12'000;
  static constexpr double positionsPerSecond = 100;  ///< relayed of one player; the others are dropped
  static constexpr double requestsPerSecond = 10;    ///< of one player: chat, store, spawns and powerups together

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

  /// Ends a player's life or gives it back; everybody is told.
  void setAlive(std::int16_t node, bool alive);
  /// Ends a running powerup before its time; everybody is told. One that is not running is left alone.
  void endPowerup(std::int16_t node, int item, Millis now);
  std::size_t playerCount() const;
  /// Everybody who is in, in the order of their connections.
  std::vector<PlayerView> players(Millis now) const;
  /// False in the intermission between two rounds, in which everybody is dead.
  bool isRoundRunning() const { return true; }

 private:
  using Fields = std::vector<std::string_view>;
  struct Player {
    std::int16_t node;
    std::int16_t colour;
    std::string name;
    std::string x;  ///< as it came in
    std::string y;
    bool alive = true;
    std::int16_t kills = 0;
    Inventory inventory{};
    Millis paidUntil = 0;
    Millis nextPing = 0;
    std::optional<Millis> pingSent = std::nullopt;  ///< of the ping that waits for its answer
    RateLimit positions{positionsPerSecond, 50};
    RateLimit requests{requestsPerSecond, 20};
  };
  struct Client {
    Millis since;
    std::optional<Player> player;  ///< once logged in
  };

  void login(ClientId client, const Fields& fields, Millis now);
  /// Why a login is refused; empty if it is not.
  std::string refusal(const Fields& fields) const;
  void position(Player& player, const Fields& fields, Millis now);
  void pingReply(ClientId client, Player& player, Millis now);
  void chat(ClientId client, Player& player, const Fields& fields, Millis now);
  void spawn(ClientId client, Player& player, Millis now);
  void buyOrSell(ClientId client, Player& player, bool isSale, const Fields& fields, Millis now);
  void activate(ClientId client, Player& player, const Fields& fields, Millis now);
  void payIncome(ClientId client, Player& player, Millis now);
  void sendFunds(ClientId client, const Player& player);
  bool isColourFree(std::int16_t colour) const;
  std::int16_t chooseColour(std::string_view preferred) const;
  std::int16_t nextNode();
  std::string randomCoordinate();
  std::map<ClientId, Client>::iterator findNode(std::int16_t node);
  void sendToAll(std::int16_t id, const std::vector<std::string>& fields);
  void sendTo(ClientId client, std::int16_t id, const std::vector<std::string>& fields);
  void sendJoined(ClientId client, const Player& player);

  ArenaOutput& output_;
  const std::string version_;
  const std::string password_;
  const ArenaRules rules_;
  std::mt19937 random_;
  std::map<ClientId, Client> clients_;
  std::int16_t lastNode_ = 0;
};

}  // namespace kelvora::server
