// What charged tails, lasers and pulses do to others.

#include <algorithm>

#include "network/wire/wireFormat.h"
#include "server/arena/arena.h"
#include "server/arena/ballGeometry.h"
#include "server/arena/plane.h"

namespace kelvora::server {

namespace {

bool isVulnerable(const Player& player, Millis now) {
  return player.isAlive && !player.inventory.isRunning(shieldSlot, now);
}

/// Whether a weapon of the attacker reaches a ball anywhere on its way.
bool reaches(const Player& attacker, Point from, Point to, Millis now) {
  const auto vertices = attacker.tail.vertices();
  for (std::size_t i = 1; i < vertices.size(); ++i) {
    if (vertices[i].isCharged &&
        distanceOfWays(vertices[i - 1].spot.point(), vertices[i].spot.point(), from, to) <= ballRadius) {
      return true;
    }
  }
  if (!attacker.heading || !attacker.inventory.isRunning(laserSlot, now)) return false;
  const Point start = attacker.spot.point();
  return distanceOfWays(start, worldEdge(start, *attacker.heading), from, to) <= ballRadius;
}

}  // namespace

void Arena::strikeOnTheWay(Player& mover, Point from, Millis now) {
  std::vector<Hit> hits;
  for (Player* other : inGame()) {
    if (other == &mover || !other->isAlive || !mover.isAlive) continue;
    if (isVulnerable(mover, now) && reaches(*other, from, mover.spot.point(), now)) hits.push_back({other, &mover});
    const Point place = other->spot.point();
    if (isVulnerable(*other, now) && reaches(mover, place, place, now)) hits.push_back({&mover, other});
  }
  strike(hits, now);
}

void Arena::strikeAll(Millis now) {
  std::vector<Hit> hits;
  const std::vector<Player*> players = inGame();
  for (Player* attacker : players) {
    if (!attacker->isAlive) continue;
    for (Player* other : players) {
      const Point place = other->spot.point();
      if (other != attacker && isVulnerable(*other, now) && reaches(*attacker, place, place, now)) {
        hits.push_back({attacker, other});
      }
    }
  }
  strike(hits, now);
}

void Arena::strike(const std::vector<Hit>& hits, Millis now) {
  // All at the same moment: two may kill each other, but nobody dies twice.
  for (const auto& [winner, loser] : hits) {
    if (loser->isAlive) kill(*winner, *loser, std::nullopt, now);
  }
}

void Arena::pulse(Player& owner, Millis now) {
  std::vector<Player*> near = inGame();
  std::erase_if(near, [&](const Player* player) {
    return !player->isAlive || length(player->spot.point() - owner.spot.point()) > pulseRadius;
  });
  // He himself comes last, so that he is alive while the others die by him.
  std::stable_partition(near.begin(), near.end(), [&](const Player* player) { return player != &owner; });
  for (Player* player : near) {
    if (isVulnerable(*player, now)) {
      kill(owner, *player, std::nullopt, now);
    } else {
      endPowerup(*player, shieldSlot, now);
    }
  }
}

void Arena::endPowerup(Player& player, int item, Millis now) {
  if (!player.inventory.end(item, now)) return;
  sendToAll(wire::msgPowerupOff, {std::to_string(player.node), std::to_string(item)});
}

}  // namespace kelvora::server
