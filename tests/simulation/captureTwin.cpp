#include "tests/simulation/captureTwin.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace kelvora {

namespace {

/// The nearest whole number, ties to even.
int rounded(double value) {
  const double below = std::floor(value);
  const double rest = value - below;
  if (rest < 0.5) return static_cast<int>(below);
  if (rest > 0.5 || std::fmod(below, 2) != 0) return static_cast<int>(below) + 1;
  return static_cast<int>(below);
}

/// A coordinate as text: seven digits, no zero before the point.
std::string textOf(float value) {
  std::array<char, 32> buffer{};
  std::snprintf(buffer.data(), buffer.size(), "%.7g", static_cast<double>(value));
  std::string text = buffer.data();
  if (text.starts_with("0.")) text.erase(0, 1);
  if (text.starts_with("-0.")) text.erase(1, 1);
  return text;
}

float distanceBetween(Vector a, Vector b) {
  const double dx = std::fabs(a.x - b.x);
  const double dy = std::fabs(a.y - b.y);
  return static_cast<float>(std::sqrt(dx * dx + dy * dy));
}

}  // namespace

int TwinGame::getPlayerIndex(int node) const {
  if (node == local.node) return -1;
  for (std::size_t i = 0; i < opponents.size(); ++i) {
    if (opponents[i].node == node && opponents[i].isConnected) return static_cast<int>(i);
  }
  return 0;
}

int TwinGame::getServerNode(int index) const {
  if (index == -1) return local.node;
  if (index < 0 || index > static_cast<int>(opponents.size()) - 1) return 0;
  const TwinPlayer& opponent = opponents[static_cast<std::size_t>(index)];
  return opponent.isConnected ? opponent.node : 0;
}

std::string TwinGame::getPlayerName(int index) const {
  if (index == -1) return local.name;
  return index < static_cast<int>(opponents.size()) ? opponents[static_cast<std::size_t>(index)].name : "";
}

bool TwinGame::isOnScreen(Vector point) const {
  const Vector centre{std::floor(canvasWidth / 2), std::floor(canvasHeight / 2)};
  const float dx = local.position.x - point.x;
  const float dy = local.position.y - point.y;
  const Vector p{centre.x - dx, centre.y - dy};
  return 0 <= p.x && p.x <= canvasWidth && 0 <= p.y && p.y <= canvasHeight;
}

void TwinGame::addTail(TwinPlayer& owner, Vector position) {
  if (!owner.alive) return;
  TwinVertex vertex;
  vertex.serial = ++serials_;
  vertex.ownerIndex = owner.index;
  vertex.num = static_cast<int>(owner.tails.size());
  vertex.position = position;
  if (owner.laysChargedTail) vertex.isCharged = true;
  owner.tails.push_back(vertex);
}

void TwinGame::killTail(TwinPlayer& owner, double num) {
  std::vector<TwinVertex> copies;
  for (std::size_t i = 0; i < owner.tails.size(); ++i) {
    if (static_cast<double>(i) != num) copies.push_back(owner.tails[i]);
  }
  owner.tails.clear();
  for (TwinVertex vertex : copies) {
    vertex.num = static_cast<int>(owner.tails.size());
    owner.tails.push_back(vertex);
  }
}

int TwinGame::getTailNumByPos(const TwinPlayer& owner, Vector position) const {
  for (std::size_t i = 0; i < owner.tails.size(); ++i) {
    const Vector& p = owner.tails[i].position;
    if (p.x == position.x && p.y == position.y) return static_cast<int>(i);
  }
  return -1;
}

bool TwinGame::age(TwinPlayer& owner, std::size_t i) {
  TwinVertex& vertex = owner.tails[i];
  const Millis d = clock - vertex.tick;
  if (d >= 32001) {
    vertex.tick = clock;
    return false;
  }
  if (d > 10) {
    vertex.age += rounded(static_cast<double>(d) / 10);
    vertex.tick = clock;
    if (vertex.age > 200) {
      const int num = vertex.num;
      checkKillerTail(vertex.ownerIndex, vertex.serial);
      killTail(owner, num);
      ++expired;
      return true;
    }
  }
  return false;
}

void TwinGame::ageTails(TwinPlayer& owner) {
  if (owner.tails.empty()) return;
  if (owner.hasExtendedTail) return;
  if (owner.lastAgeTick == 0) owner.lastAgeTick = clock;
  if (clock - owner.lastAgeTick <= 0) return;
  std::size_t i = 0;
  while (i < owner.tails.size()) {
    if (age(owner, i)) {
      i = 0;
    } else {
      i = i + 1;
    }
  }
  owner.lastAgeTick = clock;
}

void TwinGame::paintTail(TwinPlayer& owner) {
  ageTails(owner);
  for (std::size_t i = owner.tails.size(); i-- > 1;) checkKillerTail(0, owner.tails[i - 1].serial);
}

void TwinGame::addKillerTail(int winnerNode, int loserNode, float x, float y) {
  const int winner = getPlayerIndex(winnerNode);
  const int loser = getPlayerIndex(loserNode);
  const int n = getTailNumByPos(player(winner), {x, y});
  if (n == -1) {
    ++atOnce;
    executeCapture(winnerNode, loserNode);
    return;
  }
  const std::string location = "(" + textOf(x) + "," + textOf(y) + ")";
  for (TwinRecord& record : killerTails) {
    if (record.location != location) continue;
    ++shared;
    record.victims.push_back(loser);
    return;
  }
  killerTails.push_back({winner, player(winner).tails[static_cast<std::size_t>(n)].serial, {loser}, location});
}

void TwinGame::checkKillerTail(int owner, int serial) {
  for (std::size_t i = 0; i < killerTails.size(); ++i) {
    if (killerTails[i].serial != serial || killerTails[i].owner != owner) continue;
    executeKillerTail(i);
    return;
  }
}

void TwinGame::executeKillerTail(std::size_t index) {
  const TwinRecord record = killerTails[index];
  for (const int victim : record.victims) executeCapture(getServerNode(record.owner), getServerNode(victim));
  ++executed;
  --dropped;  // the executed one is removed with the others
  removeKillerTails(record.owner);
}

void TwinGame::removeKillerTails(int owner) {
  std::vector<TwinRecord> kept;
  for (const TwinRecord& record : killerTails) {
    if (record.owner != owner) {
      kept.push_back(record);
    } else {
      ++dropped;
    }
  }
  killerTails = kept;
}

void TwinGame::executeCapture(int winnerNode, int loserNode) {
  const int winner = getPlayerIndex(winnerNode);
  const int loser = getPlayerIndex(loserNode);
  chat.push_front(getPlayerName(winner) + " has captured " + getPlayerName(loser));
  chat.pop_back();
  die(player(loser));
  const int colour = player(loser).colour;
  if (loser == -1) centreMessage = "You have been captured!";
  receiveCapture(player(winner), colour);
  if (winner == -1) centreMessage = "You have captured " + getPlayerName(loser);
}

void TwinGame::die(TwinPlayer& player) {
  player.alive = false;
  if (isOnScreen(player.position)) ++captureSounds;
  for (std::size_t i = 0; i < player.captures.size(); ++i) explosions.push_back(player.position);
}

void TwinGame::receiveCapture(TwinPlayer& player, int colour) {
  player.captures.push_back(colour);
  player.kills += 1;
  player.strip[static_cast<std::size_t>(colour)] = true;
}

void TwinGame::respawn(TwinPlayer& player) {
  player.alive = true;
  player.captures.clear();
  player.strip.assign(6, false);
  player.breaksOn = true;
  if (player.index == -1) showNextTip();
}

void TwinGame::setAlive(TwinPlayer& player, bool alive) {
  player.alive = alive;
  if (!alive) {
    player.breaksOn = true;
  } else if (player.index == -1) {
    showNextTip();
  }
}

void TwinGame::showNextTip() {
  centreMessage = tips[static_cast<std::size_t>(nextTip)];
  nextTip += 1;
  if (nextTip > 19) nextTip = 0;
}

void TwinGame::queuePosition(TwinPlayer& player, Vector p) const {
  if (p.x < 0 || p.x > 100000 || p.y < 0 || p.y > 100000) return;
  if (player.awaitingFirstPosition) {
    player.awaitingFirstPosition = false;
    player.position = p;
    return;
  }
  player.positionQueue[static_cast<std::size_t>(player.positionQueueCount)] = p;
  player.positionQueueCount += 1;
  player.positionQueue.resize(static_cast<std::size_t>(player.positionQueueCount) + 1);
}

void TwinGame::dequeueFirst(TwinPlayer& player) const {
  std::vector<Vector> copies;
  for (int i = 1; i < player.positionQueueCount; ++i) {
    copies.push_back(player.positionQueue[static_cast<std::size_t>(i)]);
  }
  player.positionQueueCount = static_cast<int>(copies.size());
  copies.emplace_back();
  player.positionQueue = copies;
}

void TwinGame::arrive(TwinPlayer& player) {
  player.position = player.positionQueue[0];
  addTail(player, player.position);
  dequeueFirst(player);
}

void TwinGame::moveAsOpponent(TwinPlayer& player) {
  if (player.positionQueueCount < 1) return;
  Vector& v = player.velocity;
  player.lastPosition = player.position;
  if (v.x == 0 || v.y == 0) player.steering = false;
  Vector target;
  while (player.positionQueueCount > 0) {
    if (isOnScreen(player.positionQueue[0])) {
      target = player.positionQueue[0];
      break;
    }
    arrive(player);
    player.steering = false;
  }
  if (player.positionQueueCount < 1) return;
  const float d = distanceBetween(player.position, target);
  if (d < 500) {
    arrive(player);
    target = player.positionQueue[0];
    player.steering = false;
  } else if (d > 10000) {
    arrive(player);
    return;
  }
  if (player.positionQueueCount < 1) return;
  if (!player.steering) {
    v.x = static_cast<float>((static_cast<double>(target.x) - player.position.x) / 7);
    if (v.x == 0) v.x = target.x < player.position.x ? -1.0F : 1.0F;
    v.y = static_cast<float>((static_cast<double>(target.y) - player.position.y) / 7);
    if (v.y == 0) v.y = target.y < player.position.y ? -1.0F : 1.0F;
    player.steering = true;
  }
  v.x = static_cast<float>(v.x * timeScale);
  v.y = static_cast<float>(v.y * timeScale);
  if (v.x > 300) v.x = 300;
  if (v.y > 300) v.y = 300;
  Vector& p = player.position;
  p.x += v.x;
  p.y += v.y;
  addTail(player, p);
  if (p.x < 0) v.x = std::fabs(v.x), p.x = 0;
  if (p.x > 100000) v.x = -std::fabs(v.x), p.x = 100000;
  if (p.y < 0) v.y = std::fabs(v.y), p.y = 0;
  if (p.y > 100000) v.y = -std::fabs(v.y), p.y = 100000;
}

}  // namespace kelvora
