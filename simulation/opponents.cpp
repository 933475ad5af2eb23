#include <cmath>

#include "base/numbers.h"
#include "core/glide.h"
#include "core/modMain.h"
#include "network/send.h"
#include "protocol/rules.h"
#include "simulation/clsPlayer.h"

namespace kelvora {

namespace {

/// Stops one axis of an opponent at the edge, without the local player's inset.
void stopAtEdge(float& coordinate, float& speed) {
  if (coordinate < 0) {
    speed = std::fabs(speed);
    coordinate = 0;
  }
  if (coordinate > rules::worldSize) {
    speed = -std::fabs(speed);
    coordinate = rules::worldSize;
  }
}

}  // namespace

void clsPlayer::queuePosition(Vector point) {
  if (!modMain::isInWorld(point)) return;
  if (awaitingFirstPosition) {
    awaitingFirstPosition = false;
    position = point;
    return;
  }
  modMain::addTarget(positionQueue, point);
}

void clsPlayer::moveAsOpponent() {
  if (positionQueue.empty()) return;
  lastPosition = position;
  const auto layTail = [this] { addTail(position); };
  if (!modMain::glide({position, velocity, positionQueue, steering, rules::axisClamp}, layTail)) return;
  // Quirk Q-113: the vertex is laid before the position is clamped, so it can lie outside the world.
  addTail(position);
  stopAtEdge(position.x, velocity.x);
  stopAtEdge(position.y, velocity.y);
}

void clsPlayer::receivePing(std::int32_t value) {
  pingTick = GetTickCount();
  const float now = Timer();
  // Quirk Q-261: the clock difference is computed at each ping but never used.
  clockOffset = toSingle(static_cast<double>(now) - value);
  netMan::sendMessage<wire::msgPingReply>(Timer());
  sendPosition();
}

void clsPlayer::receiveLatencyReport(std::int32_t value) {
  lag = toInt32(static_cast<double>(GetTickCount() - pingTick));
  reportedLag = value;
  displayLag();
}

// Quirk Q-260: the client handles velocities from the server, but nothing calls this, so no client sends one.
void clsPlayer::sendVelocity() { netMan::sendMessage<wire::msgVelocityReport>(velocity.x, velocity.y); }

}  // namespace kelvora
