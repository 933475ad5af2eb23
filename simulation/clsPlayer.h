#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "base/vector.h"
#include "platform/backend.h"
#include "protocol/powerupTable.h"
#include "simulation/clsTail.h"

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

  // How far each of the operations has come.
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

  // Life and score (life.cpp).
  /// Begins a session: connected, alive, braked, with the first stock of everything. Position and tail stay.
  void init(std::int16_t colour, std::int16_t playerIndex, std::int16_t serverNode, const std::string& name);
  /// Death puts the brakes on; life shows the local player a tip.
  void setAlive(bool alive);
  /// Begins a new life where the ghost is, braked and without captures.
  void respawn();
  /// Dies with a sound, if on the screen, and an explosion particle for each capture of this life.
  void die();
  bool isAlive() const { return alive; }
  /// Adds a victim's colour to the captures. RuntimeFault "Overflow" beyond 32767 captures.
  void receiveCapture(std::int16_t colour);
  void setKills(std::int16_t kills);
  /// Credits, a whole number.
  double funds() const { return funds_; }
  /// Rounds half to even, and shows the local player's credits.
  void funds(double credits);

  // The local player's movement (movement.cpp).
  /// Moves one frame by mouse and brakes, bounces off the world's edge, and reports the position every few frames.
  /// RuntimeFault if the canvas has no height.
  void move();
  void toggleBreaks() { breaksOn = !breaksOn; }

  // Tails (tails.cpp).
  /// Lays the newest vertex at a world point, if alive and within the bound of all vertices.
  void addTail(Vector position);
  /// Takes out vertex `num`, with those behind it moving up; no such vertex, nothing happens.
  void killTail(double num);
  /// Empty for a vertex outside the tail. RuntimeFault for a fraction that rounds to its end.
  std::string getTailID(double num) const;
  /// The oldest vertex with this id or at this very place; -1 if there is none.
  double getTailNumByID(const std::string& id) const;
  double getTailNumByPos(Vector position) const;

  // Opponents and lag (opponents.cpp).
  /// Glides one frame towards the next queued position. Positions out of sight are taken at once.
  void moveAsOpponent();
  /// The first position places the player, later ones wait. Points outside the world are ignored.
  void queuePosition(Vector position);
  void setVelocity(Vector value) { velocity = value; }
  /// Answers a ping, whose value is the server's clock in seconds, and reports the position.
  void receivePing(std::int32_t value);
  /// Takes the server's measurement, ms, and shows it beside the client's own.
  void receiveLatencyReport(std::int32_t value);
  std::int32_t getLag() const { return lag; }

  // Painting (rendering/playerPainting.cpp).
  /// Width of the ball's cell, canvas units.
  float getWidth() const;
  /// Paints tail, radar blip, laser and ball, or the arrow of an opponent out of sight. Ages the tail, which can land
  /// captures.
  void paintSelf();
  /// Lightning along a segment of the world, new at every call.
  void paintChargedArc(Vector a, Vector b);
  /// Shows the kills beside the player's name (rendering/playerPanel.cpp).
  void displayKills();

  // Powerups (store/powerupRules.cpp).
  /// Owned powerups of all kinds. RuntimeFault "Overflow" beyond 16 bits.
  std::int16_t totalPowerups() const;
  /// Asks the server to start a powerup, the local player's only; refusals go to the console.
  void requestActivatePowerup(std::int16_t slot);
  /// The server's yes and its early end; a slot outside 0 to 5 is RuntimeFault in the first, ignored in the second.
  void activatePowerup(std::int16_t slot);
  void unactivatePowerup(std::int16_t slot);
  /// Counts one second off the running activations whenever the clock's second has changed.
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

  // The main window's panels (rendering/playerPanel.cpp).
  void displayLag();
  void displayFunds();
  void displayCapture(std::int16_t victimColour);
  void clearCaptureStrip();

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
