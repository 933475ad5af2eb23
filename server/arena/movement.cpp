// Where the players are, and whom their tails enclose.

#include <cmath>

#include "base/wholeNumber.h"
#include "network/wire/wireFormat.h"
#include "server/arena/arena.h"

namespace kelvora::server {

namespace {

constexpr Millis newStartAfter = 1'000;
constexpr Millis longestStep = 80;  // of flight, twice the time between two reports at the design pace
constexpr double turboFactor = 3;
constexpr double ghostFactor = 2;

/// As clients read it; nothing if it is no number or outside the world.
std::optional<float> coordinate(std::string_view text) {
  const auto value = wholeNumber<double>(text);
  if (!value || !(*value >= 0 && *value <= worldSize)) return std::nullopt;
  return static_cast<float>(*value);
}

}  // namespace

void Arena::position(Player& player, const Fields& fields, Millis now) {
  if (fields.size() != 2) return;
  const auto x = coordinate(fields[0]);
  const auto y = coordinate(fields[1]);
  if (!x || !y || !player.positions.allows(now)) return;
  const Spot spot = spotOf(fields[0], fields[1], {*x, *y});
  const Point from = player.spot.point();
  const Point to = spot.point();
  const bool isJump = !isWithinReach(player, std::abs(to.x - from.x) + std::abs(to.y - from.y), now);
  if (isJump && now - player.lastReport < newStartAfter) return;
  player.lastReport = now;
  player.spot = spot;
  if (isJump) {
    player.tail.clear();
    player.heading.reset();
  } else if (from != to) {
    player.heading = Point{to.x - from.x, to.y - from.y};
  }
  // The sender gets the same text: his tail grows from the echo, and others must find its points by their coordinates.
  sendToAll(wire::msgPosition, {std::to_string(player.node), spot.x, spot.y});
  if (!player.isAlive) return;
  player.tail.prune(now);
  const Millis extendedUntil = player.inventory.runsUntil(extendedTailSlot);
  if (player.tail.lay(spot, now, player.inventory.isRunning(chargedTailSlot, now), extendedUntil)) {
    captureEnclosed(player, now);
  }
  strikeOnTheWay(player, isJump ? to : from, now);
}

bool Arena::isWithinReach(Player& player, double distance, Millis now) const {
  if (rules_.speedFactor <= 0) return true;
  double speed = SpeedLimit::designSpeed * rules_.speedFactor;
  Millis step = longestStep;
  if (player.inventory.isRunning(turboSlot, now)) {
    speed *= turboFactor;
    // A client's frame goes no further than its design, however long it takes, but under a turbo it does.
    step += now - player.lastReport;
  }
  if (!player.isAlive) speed *= ghostFactor;
  return distance <= speed * static_cast<double>(step) && player.speed.allows(distance, speed, now);
}

void Arena::captureEnclosed(Player& winner, Millis now) {
  std::vector<Player*> others;
  std::vector<GridPoint> places;
  for (Player* other : inGame()) {
    if (other == &winner || !other->isAlive) continue;
    others.push_back(other);
    places.push_back(other->spot.grid);
  }
  const auto loops = enclosingLoops(winner.tail.points(), places);
  std::optional<std::size_t> longest;
  for (const auto& loop : loops) {
    if (loop && (!longest || *loop < *longest)) longest = loop;
  }
  if (!longest) return;
  const std::optional<Spot> vertex = vertexToName(winner, *longest);
  for (std::size_t i = 0; i < others.size(); ++i) {
    if (loops[i]) kill(winner, *others[i], vertex, now);
  }
}

std::optional<Spot> Arena::vertexToName(const Player& winner, std::size_t firstOfLoop) const {
  if (const Spot* pending = pending_.vertexOf(winner.node)) return *pending;
  // The oldest one ends first, and so the loser learns of it soonest.
  const auto vertices = winner.tail.vertices();
  for (std::size_t i = firstOfLoop; i + 1 < vertices.size(); ++i) {
    if (!pending_.isNamedByAnother(winner.node, vertices[i].spot.read)) return vertices[i].spot;
  }
  return std::nullopt;
}

}  // namespace kelvora::server
