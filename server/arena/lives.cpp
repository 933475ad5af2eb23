// Death and respawn.

#include <algorithm>
#include <limits>
#include <utility>

#include "network/wire/wireFormat.h"
#include "server/arena/arena.h"

namespace kelvora::server {

namespace {

// No vertex is so far out, and a client carries out at once what names none.
constexpr const char* nowhere = "-1000000";

}  // namespace

void Arena::kill(Player& winner, Player& loser, const std::optional<Spot>& vertex, Millis now) {
  loser.isAlive = false;
  loser.tail.clear();
  loser.wantsRespawn = false;
  loser.isOffered = false;
  loser.respawnAt = now + rules_.respawnWaitMs;
  if (winner.kills < std::numeric_limits<std::int16_t>::max()) ++winner.kills;
  if (vertex) {
    pending_.add(winner.node, loser.node, *vertex, now, winner.inventory.runsUntil(extendedTailSlot));
  }
  sendToAll(wire::msgTailCapture, {std::to_string(winner.node), std::to_string(loser.node),
                                   vertex ? vertex->x : nowhere, vertex ? vertex->y : nowhere});
  if (&winner == &loser) return;
  ++winner.roundCaptures;
  winner.lastCapture = ++captures_;
  credit(winner, Entry::capture, rules_.captureCredits);
}

void Arena::spawn(ClientId client, Player& player, Millis now) {
  if (!player.requests.allows(now)) return;
  if (player.isAlive) return sendTo(client, wire::msgSpawnDenied, {""});
  const Millis wait = respawnWait(player, now);
  if (wait == 0) return respawn(player);
  player.wantsRespawn = true;
  sendTo(client, wire::msgServerText, {"You will be respawned in " + secondsText(wait) + "."});
}

Millis Arena::respawnWait(const Player& player, Millis now) const {
  const Millis due = std::max(player.respawnAt, pending_.landsAt(player.node));
  // A tick begins the next round, not the moment itself.
  const Millis intermission = clock_.isRunning() ? 0 : std::max<Millis>(1, clock_.left());
  return std::max({Millis{0}, due - now, intermission});
}

void Arena::respawnWhoIsDue(Millis now) {
  for (auto& [client, state] : clients_) {
    if (!state.player || state.player->isAlive || respawnWait(*state.player, now) > 0) continue;
    Player& player = *state.player;
    if (player.wantsRespawn) {
      respawn(player);
    } else if (!std::exchange(player.isOffered, true)) {
      // Nothing else on a ghost's screen tells him, and his button stays grey.
      sendTo(client, wire::msgServerText, {"Press Spawn for a new life."});
    }
  }
}

void Arena::respawn(Player& player) {
  player.wantsRespawn = false;
  player.isAlive = true;
  sendToAll(wire::msgRespawn, {std::to_string(player.node)});
}

void Arena::letGo(Player&& player) {
  if (!pending_.involves(player.node)) {
    sendToAll(wire::msgPlayerLeft, {std::to_string(player.node)});
    return;
  }
  // A client that hears of it too soon lets somebody else die in his place, or forgets his captures.
  player.isAlive = false;
  leavers_.push_back(std::move(player));
}

void Arena::letLeaversGo() {
  std::erase_if(leavers_, [&](const Player& player) {
    if (pending_.involves(player.node)) return false;
    sendToAll(wire::msgPlayerLeft, {std::to_string(player.node)});
    return true;
  });
}

}  // namespace kelvora::server
