#include <cmath>

#include "base/numbers.h"
#include "base/text.h"
#include "core/bounds.h"
#include "core/mainLoop.h"
#include "core/modMain.h"
#include "core/view.h"
#include "network/send.h"
#include "network/wire/wireFormat.h"
#include "simulation/clsPlayer.h"

namespace kelvora {

namespace {

constexpr float arrivalDistance = 500;
constexpr float jumpDistance = 10000;
constexpr double glideFrames = 7;
constexpr float speedLimit = 300;

bool isInWorld(Vector point) {
  return point.x >= 0 && point.x <= modMain::worldSize && point.y >= 0 && point.y <= modMain::worldSize;
}

/// One axis of the glide towards a target; never 0.
float glideStep(float target, float from) {
  const float step = static_cast<float>((static_cast<double>(target) - from) / glideFrames);
  if (step != 0) return step;
  // Quirk Q-110: a step with a zero in it would be thrown away in the next frame, so a target straight ahead is
  // approached with a side step of 1.
  return target < from ? -1.0F : 1.0F;
}

/// Holds one axis of an opponent on the edge, without the local player's inset.
void stopAtEdge(float& coordinate, float& speed) {
  if (coordinate < 0) {
    speed = std::fabs(speed);
    coordinate = 0;
  }
  if (coordinate > modMain::worldSize) {
    speed = -std::fabs(speed);
    coordinate = modMain::worldSize;
  }
}

}  // namespace

void clsPlayer::queuePosition(Vector point) {
  if (!isInWorld(point)) return;
  if (awaitingFirstPosition) {
    awaitingFirstPosition = false;
    position = point;
    return;
  }
  if (modMain::world.queuedPositions >= modMain::mostQueuedPositions) return;
  positionQueue.push_back(point);
  ++modMain::world.queuedPositions;
}

void clsPlayer::dequeuePosition() {
  positionQueue.pop_front();
  if (modMain::world.queuedPositions > 0) --modMain::world.queuedPositions;
}

void clsPlayer::moveAsOpponent() {
  if (positionQueue.empty()) return;
  lastPosition = position;
  if (velocity.x == 0 || velocity.y == 0) steering = false;

  // Out of sight nothing glides: every point that waits is taken in this one frame.
  while (!positionQueue.empty() && !modMain::isOnScreen(positionQueue.front())) {
    position = positionQueue.front();
    addTail(position);
    dequeuePosition();
    steering = false;
  }
  if (positionQueue.empty()) return;

  const float distance = modMain::getDistance(position, positionQueue.front());
  if (distance < arrivalDistance) {
    position = positionQueue.front();
    addTail(position);
    dequeuePosition();
    steering = false;
    if (positionQueue.empty()) return;
  } else if (distance > jumpDistance) {
    // Quirk Q-115: a jump keeps the glide's step, which then serves the next target.
    position = positionQueue.front();
    addTail(position);
    dequeuePosition();
    return;
  }

  if (!steering) {
    const Vector target = positionQueue.front();
    velocity = {glideStep(target.x, position.x), glideStep(target.y, position.y)};
    steering = true;
  }
  // Quirk Q-111: the stored step itself is scaled, in every frame anew, so that at a time scale above 1 the glide gains
  // speed from frame to frame.
  const double timeScale = modMain::getTimeScale();
  velocity = {toSingle(velocity.x * timeScale), toSingle(velocity.y * timeScale)};
  // Quirk Q-112: only rightward and downward steps are limited.
  if (velocity.x > speedLimit) velocity.x = speedLimit;
  if (velocity.y > speedLimit) velocity.y = speedLimit;

  position = {position.x + velocity.x, position.y + velocity.y};
  // Quirk Q-113: the vertex is laid before the edge stops the player, so it can lie outside the world.
  addTail(position);
  stopAtEdge(position.x, velocity.x);
  stopAtEdge(position.y, velocity.y);
}

void clsPlayer::receivePing(std::int32_t value) {
  pingTick = GetTickCount();
  const float now = Timer();
  // Quirk Q-261: how far the server's clock is off is worked out at each ping, and nobody reads it.
  clockOffset = toSingle(static_cast<double>(now) - value);
  netMan::sendMessage(wire::msgPingReply, {numberText(Timer())});
  sendPosition();
}

void clsPlayer::receiveLatencyReport(std::int32_t value) {
  lag = toInt32(static_cast<double>(GetTickCount() - pingTick));
  reportedLag = value;
  displayLag();
}

// Quirk Q-260: velocities are taken from the server, but nothing calls this, so no client is ever their source.
void clsPlayer::sendVelocity() {
  netMan::sendMessage(wire::msgVelocityReport, {numberText(velocity.x), numberText(velocity.y)});
}

}  // namespace kelvora
