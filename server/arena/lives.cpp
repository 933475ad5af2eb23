#include "server/arena/lives.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "protocol/frames.h"

namespace kelvora::server {

namespace {

// No vertex is that far outside the world, and clients carry out a capture at once if its vertex doesn't exist.
constexpr std::string_view nowhere = "-1000000";

}  // namespace

Lives::Lives(Roster& roster, PendingCaptures& pending, Economy& economy, const Rounds& rounds, const ArenaRules& rules)
    : roster_(roster),
      pending_(pending),
      economy_(economy),
      rounds_(rounds),
      captureCredits_(rules.captureCredits),
      respawnWaitMs_(rules.respawnWaitMs) {}

void Lives::kill(Player& winner, Player& loser, const std::optional<Spot>& vertex, Millis now) {
  loser.isAlive = false;
  loser.tail.clear();
  loser.wantsRespawn = false;
  loser.isOffered = false;
  loser.respawnAt = now + respawnWaitMs_;
  if (winner.kills < std::numeric_limits<std::int16_t>::max()) ++winner.kills;
  if (vertex) {
    pending_.add(winner.node, loser.node, *vertex, now, winner.inventory.runsUntil(extendedTailSlot));
  }
  const wire::NumberText x{vertex ? vertex->x : nowhere};
  const wire::NumberText y{vertex ? vertex->y : nowhere};
  roster_.sendToAll(wire::toClient<wire::msgTailCapture>(winner.node, loser.node, x, y));
  if (&winner == &loser) return;
  ++winner.roundCaptures;
  winner.lastCapture = ++captures_;
  economy_.credit(winner, Entry::capture, captureCredits_);
}

void Lives::requestSpawn(Player& player, Millis now) {
  if (!roster_.allowsRequest(player.session, now)) return;
  if (player.isAlive) return roster_.sendTo(player.client, wire::toClient<wire::msgSpawnDenied>());
  const Millis wait = respawnWait(player, now);
  if (wait == 0) return respawn(player);
  player.wantsRespawn = true;
  roster_.tell(player.client, "You will be respawned in " + secondsText(wait) + ".");
}

void Lives::respawnDue(Millis now) {
  for (auto& [client, player] : roster_.players()) {
    if (player.isAlive || respawnWait(player, now) > 0) continue;
    if (player.wantsRespawn) {
      respawn(player);
    } else if (!std::exchange(player.isOffered, true)) {
      // Nothing else on a ghost's screen says so, and the button stays grey.
      roster_.tell(client, "Press Spawn for a new life.");
    }
  }
}

void Lives::respawn(Player& player) {
  player.wantsRespawn = false;
  player.isAlive = true;
  roster_.sendToAll(wire::toClient<wire::msgRespawn>(player.node));
}

Millis Lives::respawnWait(const Player& player, Millis now) const {
  const Millis due = std::max(player.respawnAt, pending_.landsAt(player.node));
  // The next round begins with a tick, not exactly on time.
  const Millis intermission = rounds_.isRunning() ? 0 : std::max<Millis>(1, rounds_.left());
  return std::max({Millis{0}, due - now, intermission});
}

}  // namespace kelvora::server
