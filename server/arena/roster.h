#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "protocol/rules.h"
#include "server/arena/arenaOutput.h"
#include "server/arena/pendingCaptures.h"
#include "server/arena/player.h"
#include "server/arena/spectator.h"

namespace kelvora::server {

/// The logged-in players, the spectators, and how to send them messages. A player who leaves while one of their
/// captures is pending keeps colour and node until it has been carried out. Only then are the others told.
class Roster {
 public:
  static constexpr int colourCount = rules::colourCount;

  explicit Roster(ArenaOutput& output) : output_(output) {}

  /// Adds a player without telling anybody.
  Player& join(Player player);
  /// Tells what a person who leaves has done in the round.
  void reportScore(const Player& player) const;
  /// Removes a player, at once or after pending captures. Ignores a client that isn't logged in.
  void leave(ClientId client, const PendingCaptures& pending);
  /// Removes leavers whose captures have been carried out.
  void releaseLeavers(const PendingCaptures& pending);

  /// All players in the order of their connections. References stay valid until the player leaves.
  std::map<ClientId, Player>& players() { return players_; }
  const std::map<ClientId, Player>& players() const { return players_; }
  /// Players who have left but whose departure hasn't been announced.
  const std::vector<Player>& leavers() const { return leavers_; }
  /// Null if there is no such player.
  Player* find(ClientId client);
  Player* findNode(std::int16_t node);
  /// Those who get everything that all players get. Nothing else counts them.
  std::map<ClientId, Spectator>& spectators() { return spectators_; }
  const std::map<ClientId, Spectator>& spectators() const { return spectators_; }
  /// Whether `observerClient` gets everything, too.
  void setObserved(bool isObserved) { isObserved_ = isObserved; }
  /// True for a player or spectator.
  bool isIn(ClientId client) const { return players_.count(client) + spectators_.count(client) > 0; }
  /// True for whoever gets what all players get.
  bool hears(ClientId client) const { return isIn(client) || (isObserved_ && client == observerClient); }
  bool hasPeople() const;
  bool hasBots() const;
  bool isFull() const { return players_.size() == colourCount; }

  /// Leavers still hold their colours.
  bool isColourFree(PlayerColour colour) const;
  bool hasFreeColour() const;
  /// A node for a newcomer: 1 to 32767, not in use and not used recently.
  std::int16_t nextNode();

  void sendTo(ClientId client, const std::string& frame) const { output_.send(client, frame); }
  /// Sends to all players, then to all spectators and the observer.
  void sendToAll(const std::string& frame) const { sendToOthers(0, frame); }
  /// The same without one player.
  void sendToOthers(ClientId exception, const std::string& frame) const;
  /// Sends a line of the server.
  void tell(ClientId client, const std::string& text) const;
  void tellAll(const std::string& text) const;
  /// Logs a line for the operator.
  void log(const std::string& line) const { output_.log(line); }
  /// False if the client has made too many requests, such as chat lines and purchases.
  bool allowsRequest(Session& session, Millis now) const { return allows(session.requests, Drop::request, now); }
  /// False if the player has reported too many positions.
  bool allowsPosition(Player& player, Millis now) const { return allows(player.positions, Drop::position, now); }
  /// As in ArenaOutput. Bots may enter and are never muted.
  void command(ClientId client, const std::string& line) const { output_.command(client, line); }
  Outcome mayEnter(ClientId client) const { return isBot(client) ? Outcome::done() : output_.mayEnter(client); }
  NameVerdict nameVerdict(ClientId client, const std::string& name, const std::string& password) const {
    return isBot(client) ? NameVerdict{} : output_.nameVerdict(client, name, password);
  }
  /// Tells what people have done in the round, `winner` being its winner if it is over.
  void reportScores(const Player* winner) const;
  std::string muteReason(ClientId client) const { return isBot(client) ? "" : output_.muteReason(client); }

 private:
  void sendLeft(const Player& player) const;
  bool allows(RateLimit& limit, Drop what, Millis now) const;

  ArenaOutput& output_;
  std::map<ClientId, Player> players_;
  std::map<ClientId, Spectator> spectators_;
  bool isObserved_ = false;
  std::vector<Player> leavers_;
  std::int16_t lastNode_ = 0;
};

}  // namespace kelvora::server
