#include "server/arena/movement.h"

#include "protocol/frames.h"
#include "protocol/rules.h"
#include "server/arena/enclosure.h"
#include "server/arena/plane.h"

namespace kelvora::server {

namespace {

constexpr Millis newStartAfter = 1'000;
constexpr Millis maxStep = 2 * rules::reportInterval;  // of flight

bool isInWorld(double coordinate) { return coordinate >= 0 && coordinate <= worldSize; }

bool isWithinReach(Player& player, double distance, double speedFactor, Millis now) {
  if (speedFactor <= 0) return true;
  double speed = rules::topSpeed * speedFactor;
  Millis step = maxStep;
  if (player.inventory.isRunning(turboSlot, now)) {
    speed *= rules::turboFactor;
    // A client's frame moves no further than designed, however long it takes, except under a turbo.
    step += now - player.lastReport;
  }
  if (!player.isAlive) speed *= rules::ghostFactor;
  return distance <= speed * static_cast<double>(step) && player.speed.allows(distance, speed, now);
}

}  // namespace

Move moveTo(Player& player, const Spot& spot, double speedFactor, Millis now) {
  const Point way = spot.point() - player.spot.point();
  const bool isJump = !isWithinReach(player, flightLength(way), speedFactor, now);
  if (isJump && now - player.lastReport < newStartAfter) return Move::refused;
  player.lastReport = now;
  player.spot = spot;
  if (isJump) {
    player.tail.clear();
    player.heading.reset();
    return Move::jump;
  }
  if (way != Point{}) player.heading = way;
  return Move::step;
}

void Movement::report(Player& player, std::string_view fields, Millis now) {
  const auto request = wire::fromClient<wire::msgPositionReport>(fields);
  if (!request) return;
  const auto& [x, y] = *request;
  if (!isInWorld(x.value) || !isInWorld(y.value) || !roster_.allowsPosition(player, now)) return;
  const Point before = player.spot.point();
  const Spot spot = spotOf(x.text, y.text, {static_cast<float>(x.value), static_cast<float>(y.value)});
  const Move move = moveTo(player, spot, speedFactor_, now);
  if (move == Move::refused) return;
  // The sender gets the same text. A client's tail grows from the echo, and others must find its vertices by these
  // coordinates.
  roster_.sendToAll(wire::toClient<wire::msgPosition>(player.node, wire::NumberText{spot.x}, wire::NumberText{spot.y}));
  if (!player.isAlive) return;
  player.tail.prune(now);
  const Millis extendedUntil = player.inventory.runsUntil(extendedTailSlot);
  if (player.tail.lay(spot, now, player.inventory.isRunning(chargedTailSlot, now), extendedUntil)) {
    captureEnclosed(player, now);
  }
  combat_.strikeOnTheWay(player, move == Move::jump ? spot.point() : before, now);
}

void Movement::captureEnclosed(Player& winner, Millis now) {
  const Enclosure enclosure = enclosedBy(winner, roster_.players(), pending_);
  for (Player* loser : enclosure.losers) lives_.kill(winner, *loser, enclosure.vertex, now);
}

}  // namespace kelvora::server
