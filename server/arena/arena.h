#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "protocol/wireFormat.h"
#include "server/arena/arenaOutput.h"
#include "server/arena/arenaRules.h"
#include "server/arena/coach.h"
#include "server/arena/combat.h"
#include "server/arena/economy.h"
#include "server/arena/gallery.h"
#include "server/arena/lives.h"
#include "server/arena/lobby.h"
#include "server/arena/movement.h"
#include "server/arena/pendingCaptures.h"
#include "server/arena/playerView.h"
#include "server/arena/roster.h"
#include "server/arena/rounds.h"

namespace kelvora::server {

/// The rules of the game on plain state. Has no sockets and no clock: every call passes the time.
class Arena {
 public:
  static constexpr int colourCount = Roster::colourCount;

  /// `version` is required of clients. An empty `password` admits everybody.
  Arena(ArenaOutput& output, std::string version, std::string password, std::uint32_t seed,
        const ArenaRules& rules = {});
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;

  /// Adds a connection, which has to log in.
  void connected(ClientId client, Millis now, Role role = Role::player) { lobby_.enter(client, role, now); }
  /// Handles one frame's text: id and fields. Invalid messages are dropped.
  void received(ClientId client, std::string_view text, Millis now);
  /// Removes a connection that either side has closed.
  void disconnected(ClientId client);
  /// Call this several times a second.
  void tick(Millis now);

  std::size_t playerCount() const { return roster_.players().size(); }
  /// Sends all spectators a frame.
  void show(const std::string& frame) const { gallery_.show(frame); }
  const std::map<ClientId, Spectator>& spectators() const { return roster_.spectators(); }
  /// True for a player or spectator.
  bool isIn(ClientId client) const { return roster_.isIn(client); }
  /// All logged-in players, in the order of their connections.
  std::vector<PlayerView> players(Millis now) const;
  /// Colours that bots hold and people waiting to log in need. Disconnect these bots. Each tick retries the logins.
  std::vector<PlayerColour> wantedColours() const { return lobby_.wantedColours(); }

  /// Sends a player or spectator, or everybody, a line of the server.
  void tell(ClientId client, const std::string& text) const { roster_.tell(client, text); }
  void tellAll(const std::string& text) const { roster_.tellAll(text); }
  /// Removes a player or spectator, who is told why. The others see a player leave.
  void expel(ClientId client, const std::string& reason);
  /// Ends a running round, with its winner.
  void endRound() { rounds_.endNow(); }
  /// Begins a new round. A running one ends without a winner.
  void restartRound() { rounds_.restart(); }
  /// Shows `observerClient` all players, and then everything that all players get, until it is switched off. Nobody
  /// learns of it.
  void observe(bool isObserved, Millis now);
  /// How many rounds have begun.
  int roundCount() const { return rounds_.count(); }
  /// False in the intermission between two rounds, when everybody is dead.
  bool isRoundRunning() const { return rounds_.isRunning(); }

 private:
  void handle(Player& player, const wire::Incoming& message, Millis now);

  ArenaOutput& output_;
  // Each piece knows the ones above it.
  Roster roster_;
  Gallery gallery_;
  PendingCaptures pending_;
  Economy economy_;
  Rounds rounds_;
  Lives lives_;
  Combat combat_;
  Movement movement_;
  Coach coach_;
  Lobby lobby_;
};

}  // namespace kelvora::server
