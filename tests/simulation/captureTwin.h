#pragma once

#include <deque>
#include <string>
#include <vector>

#include "base/vector.h"
#include "platform/backend.h"

namespace kelvora {

struct TwinVertex {
  int serial = 0;  ///< stands for the tailID, unique
  int ownerIndex = 0;
  int num = 0;
  Vector position;
  int age = 0;
  Millis tick = 0;
  bool isCharged = false;
};

struct TwinPlayer {
  int index = 0;
  int node = 0;
  int colour = 0;
  std::string name;
  bool isConnected = true;
  bool alive = true;
  bool breaksOn = true;
  Vector position, lastPosition, velocity;
  std::vector<Vector> positionQueue{1};
  int positionQueueCount = 0;
  bool awaitingFirstPosition = true;
  bool steering = false;
  bool laysChargedTail = false;
  bool hasExtendedTail = false;
  std::vector<TwinVertex> tails;
  Millis lastAgeTick = 0;
  std::vector<int> captures;
  int kills = 0;
  std::vector<bool> strip = std::vector<bool>(6);  ///< colours in its capture strip
};

struct TwinRecord {
  int owner = 0;
  int serial = 0;
  std::vector<int> victims;
  std::string location;
};

/// An independent reimplementation of tails, captures and opponents: literal and slow. It draws nothing: `paintTail`
/// only does what painting a tail does to the world.
class TwinGame {
 public:
  // The outside world.
  Millis clock = 0;
  double timeScale = 1;
  float canvasWidth = 0, canvasHeight = 0;
  std::vector<std::string> tips;

  TwinPlayer local;
  std::vector<TwinPlayer> opponents;
  std::vector<TwinRecord> killerTails;
  std::string centreMessage;
  int nextTip = 0;
  std::deque<std::string> chat = std::deque<std::string>(8);  ///< newest first
  std::vector<Vector> explosions;
  int captureSounds = 0;
  // How often each branch was taken.
  int atOnce = 0, shared = 0, executed = 0, dropped = 0, expired = 0;

  TwinPlayer& player(int index) { return index == -1 ? local : opponents.at(static_cast<std::size_t>(index)); }
  int getPlayerIndex(int node) const;
  bool isOnScreen(Vector point) const;

  void addTail(TwinPlayer& owner, Vector position);
  void killTail(TwinPlayer& owner, double num);
  int getTailNumByPos(const TwinPlayer& owner, Vector position) const;
  void paintTail(TwinPlayer& owner);

  void addKillerTail(int winnerNode, int loserNode, float x, float y);
  void removeKillerTails(int owner);
  void executeCapture(int winnerNode, int loserNode);
  void die(TwinPlayer& player);
  void respawn(TwinPlayer& player);
  void setAlive(TwinPlayer& player, bool alive);

  void queuePosition(TwinPlayer& player, Vector p) const;
  void moveAsOpponent(TwinPlayer& player);

 private:
  int getServerNode(int index) const;
  std::string getPlayerName(int index) const;
  bool age(TwinPlayer& owner, std::size_t i);
  void ageTails(TwinPlayer& owner);
  void checkKillerTail(int owner, int serial);
  void executeKillerTail(std::size_t index);
  void receiveCapture(TwinPlayer& player, int colour);
  void showNextTip();
  void dequeueFirst(TwinPlayer& player) const;
  void arrive(TwinPlayer& player);

  int serials_ = 0;
};

}  // namespace kelvora
