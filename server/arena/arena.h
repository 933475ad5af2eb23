#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "server/arena/arenaOutput.h"
#include "server/arena/arenaRules.h"
#include "server/arena/combat.h"
#include "server/arena/economy.h"
#include "server/arena/lives.h"
#include "server/arena/lobby.h"
#include "server/arena/movement.h"
#include "server/arena/pendingCaptures.h"
#include "server/arena/playerView.h"
#include "server/arena/roster.h"
#include "server/arena/rounds.h"

namespace kelvora::server {

/// The rules of the game on plain state: who is in, what they tell each other and what they are told. It knows no
/// sockets and no clock; the time comes with every call.
class Arena {
 public:
  static constexpr int colourCount = Roster::colourCount;

  /// `version` is the one that a client must have; an empty `password` admits everybody.
  Arena(ArenaOutput& output, std::string version, std::string password, std::uint32_t seed,
        const ArenaRules& rules = {});
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;

  void connected(ClientId client, Millis now) { lobby_.enter(client, now); }
  /// One frame's text, id and fields. What makes no sense is dropped.
  void received(ClientId client, std::string_view text, Millis now);
  /// The connection is gone, by whichever side.
  void disconnected(ClientId client);
  /// Call this several times a second.
  void tick(Millis now);

  std::size_t playerCount() const { return roster_.players().size(); }
  /// Everybody who is in, in the order of their connections.
  std::vector<PlayerView> players(Millis now) const;
  /// The colours that people who want to log in need, and bots have. Disconnect these bots; the logins wait and are
  /// tried again at each tick.
  std::vector<std::int16_t> wantedColours() const { return lobby_.wantedColours(); }
  /// False in the intermission between two rounds, in which everybody is dead.
  bool isRoundRunning() const { return rounds_.isRunning(); }

 private:
  void handle(Player& player, int id, const RequestFields& fields, Millis now);

  // Each piece knows those above it.
  Roster roster_;
  PendingCaptures pending_;
  Economy economy_;
  Rounds rounds_;
  Lives lives_;
  Combat combat_;
  Movement movement_;
  Lobby lobby_;
};

}  // namespace kelvora::server
