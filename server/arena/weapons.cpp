#include "server/arena/weapons.h"

#include <algorithm>

#include "protocol/rules.h"
#include "server/arena/plane.h"

namespace kelvora::server {

namespace {

/// In world units. At its design size, the canvas shows 4560 units above and below its player.
constexpr double pulseRadius = 4'500;

/// True if one of the attacker's weapons reaches a ball on its way.
bool reaches(const Player& attacker, Point from, Point to, Millis now) {
  const auto vertices = attacker.tail.vertices();
  for (std::size_t i = 1; i < vertices.size(); ++i) {
    if (vertices[i].isCharged &&
        segmentDistance(vertices[i - 1].spot.point(), vertices[i].spot.point(), from, to) <= rules::ballRadius) {
      return true;
    }
  }
  if (!attacker.heading || !attacker.inventory.isRunning(laserSlot, now)) return false;
  const Point start = attacker.spot.point();
  return segmentDistance(start, worldEdge(start, *attacker.heading), from, to) <= rules::ballRadius;
}

}  // namespace

bool isVulnerable(const Player& player, Millis now) {
  return player.isAlive && !player.inventory.isRunning(shieldSlot, now);
}

std::vector<Hit> hitsOnTheWay(std::map<ClientId, Player>& players, Player& mover, Point from, Millis now) {
  std::vector<Hit> hits;
  if (!mover.isAlive) return hits;
  for (auto& [client, other] : players) {
    if (&other == &mover || !other.isAlive) continue;
    if (isVulnerable(mover, now) && reaches(other, from, mover.spot.point(), now)) hits.push_back({&other, &mover});
    const Point point = other.spot.point();
    if (isVulnerable(other, now) && reaches(mover, point, point, now)) hits.push_back({&mover, &other});
  }
  return hits;
}

std::vector<Hit> hitsNow(std::map<ClientId, Player>& players, Millis now) {
  std::vector<Hit> hits;
  for (auto& [attackingClient, attacker] : players) {
    if (!attacker.isAlive) continue;
    for (auto& [client, other] : players) {
      const Point point = other.spot.point();
      if (&other != &attacker && isVulnerable(other, now) && reaches(attacker, point, point, now)) {
        hits.push_back({&attacker, &other});
      }
    }
  }
  return hits;
}

std::vector<Player*> playersInPulse(std::map<ClientId, Player>& players, const Player& owner) {
  std::vector<Player*> near;
  for (auto& [client, player] : players) {
    if (player.isAlive && length(player.spot.point() - owner.spot.point()) <= pulseRadius) near.push_back(&player);
  }
  std::stable_partition(near.begin(), near.end(), [&](const Player* player) { return player != &owner; });
  return near;
}

}  // namespace kelvora::server
