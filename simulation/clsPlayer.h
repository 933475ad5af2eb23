#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "base/vector.h"
#include "platform/backend.h"
#include "simulation/clsTail.h"
#include "store/powerupTable.h"

namespace kelvora {

/// One of a player's six powerups.
struct PowerupState {
  std::int16_t count = 0;     ///< owned
  std::int16_t timeLeft = 0;  ///< seconds of the running activation
  bool active = false;
};

/// A player: the local one, who moves by the mouse and has playerIndex -1, or an opponent, who is replayed from relayed
/// positions. The fields are read and written by every room.
class clsPlayer {
 public:
  std::int16_t colour = 0;       ///< 0 to 5
  std::int16_t playerIndex = 0;  ///< -1 for the local player, else the slot in `opponents`
  std::int16_t serverNode = 0;   ///< the server's number for this player
  std::string name;
  Vector position;      ///< world units
  Vector lastPosition;  ///< position at the start of the frame
  Vector velocity;      ///< world units per frame, the time scale included
  bool isConnected = false;
  std::int32_t lag = 0;  ///< ms from the last ping to the last latency report
  std::int32_t reportedLag = 0;
  Tick pingTick = 0;      ///< ms
  float clockOffset = 0;  ///< seconds
  // Quirk Q-220: brakes are spelt "breaks" wherever the game names them, in its names as in its texts.
  bool breaksOn = false;
  double positionReportInterval = 0;  ///< frames waited between position reports
  std::deque<Vector> positionQueue;   ///< received and not yet reached, the next target first
  /// The tail, oldest vertex first; a vertex's `num` is its index.
  std::deque<clsTail> tails;
  /// Serial number of the oldest vertex. It rises as vertices leave the old end, so that none of the others need be
  /// renumbered.
  double tailBase = 0;
  bool alive = false;
  std::vector<std::int16_t> captures;  ///< colours captured in this life
  std::int16_t kills = 0;
  float speed = 0;  ///< top speed, world units per frame at time scale 1
  std::array<PowerupState, powerupSlotCount> powerups;
  std::int16_t powerSlotLimit = 0;
  bool awaitingFirstPosition = false;

  double reportCounter = 0;  ///< frames since the last position report
  Tick lastAgeTick = 0;      ///< ms, tick of the last ageing pass
  bool steering = false;     ///< `moveAsOpponent` has a velocity for its current target
  bool animFalling = false;
  std::int16_t animFrame = 0;        ///< 0 to 3
  std::int16_t animTick = 0;         ///< frames since the cell last changed
  std::int32_t lastPowerupTick = 0;  ///< whole second of the last powerup tick

  Vector getPosition() const { return position; }
  double tailCount() const { return static_cast<double>(tails.size()); }
  double positionQueueCount() const { return static_cast<double>(positionQueue.size()); }
  std::int16_t captureCount() const { return static_cast<std::int16_t>(captures.size()); }

  // Life and score (capture.cpp).
  void init(std::int16_t colour, std::int16_t playerIndex, std::int16_t serverNode, const std::string& name);
  void setAlive(bool alive);
  void respawn();
  void die();
  bool isAlive() const { return alive; }
  /// Of the ball's cell, canvas units.
  float getWidth() const;
  void receiveCapture(std::int16_t colour);
  void displayKills();
  void setKills(std::int16_t kills);
  double funds() const { return funds_; }
  void funds(double credits);

  // The local player's movement (movement.cpp).
  void move();
  void toggleBreaks() { breaksOn = !breaksOn; }

  // Tails (tails.cpp).
  void addTail(Vector position);
  void killTail(double num);
  std::string getTailID(double num) const;
  double getTailNumByID(const std::string& id) const;
  double getTailNumByPos(Vector position) const;

  // Opponents and lag (opponents.cpp).
  void moveAsOpponent();
  void queuePosition(Vector position);
  void setVelocity(Vector value) { velocity = value; }
  void receivePing(std::int32_t value);
  void receiveLatencyReport(std::int32_t value);
  std::int32_t getLag() const { return lag; }

  // Painting (rendering/playerPainting.cpp).
  void paintSelf();
  /// Lightning along a segment of the world, new at every call.
  void paintChargedArc(Vector a, Vector b);

  // Powerups (store/powerupRules.cpp).
  std::int16_t totalPowerups() const;
  /// Asks the server to start a powerup, the local player's only; refusals go to the console.
  void requestActivatePowerup(std::int16_t slot);
  /// The server's yes and its early end; a slot outside 0 to 5 is RuntimeFault in the first, ignored in the second.
  void activatePowerup(std::int16_t slot);
  void unactivatePowerup(std::int16_t slot);
  void tickPowerups();

  // The store (store/store.cpp).
  /// Fills the store's window in; the local player's alone.
  void populatePowerupsForm();
  /// Requests to the server; an item is a powerup slot.
  void purchaseItem(std::int16_t item);
  void sellItem(std::int16_t item);
  /// The server's answers: the item's new stock and the new balance. A purchase of an item outside 0 to 5 is
  /// RuntimeFault once the balance has been set.
  void purchaseAccepted(std::int16_t item, std::int16_t stock, double funds);
  void sellItemAccepted(std::int16_t item, std::int16_t stock, double funds);
  /// Brings the store's window up to date, if it is visible, with a text at its bottom.
  void showStoreStatus(const std::string& text);

 private:
  void sendPosition();
  void sendVelocity();
  void ageTails();
  void dequeuePosition();
  void displayLag();

  void paintBall(Vector centre);
  void advanceAnimation();
  void paintTail();
  void paintRadarBlip();
  void paintOffscreenArrow();
  void paintLaser();
  void paintPowerupCounts();

  double funds_ = 0;  // credits, whole numbers
};

}  // namespace kelvora
