#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "base/vector.h"
#include "platform/backend.h"
#include "protocol/powerupTable.h"
#include "protocol/rules.h"
#include "simulation/clsTail.h"

namespace kelvora {

/// One of a player's six powerups.
struct PowerupState {
  std::int16_t count = 0;     ///< number owned
  std::int16_t timeLeft = 0;  ///< seconds left of the running activation
  bool active = false;
};

/// A player: the local one, steered by the mouse, with playerIndex localIndex, or an opponent, replayed from relayed
/// positions. Every room reads and writes the fields.
class clsPlayer {
 public:
  PlayerColour colour = redPlayer;
  std::int16_t playerIndex = 0;  ///< localIndex, or the slot in `opponents`
  std::int16_t serverNode = 0;   ///< the server's number for this player
  std::string name;
  Vector position;               ///< world units
  Vector lastPosition;           ///< world units, at the start of the frame
  Vector velocity;               ///< world units per frame, including the time scale
  bool isConnected = false;      ///< false once the player has left
  std::int32_t lag = 0;          ///< ms from the last ping to the last latency report, as the client measured it
  std::int32_t reportedLag = 0;  ///< ms, as the server measured it
  Millis pingTick = 0;           ///< ms, when the last ping arrived
  float clockOffset = 0;         ///< seconds between the server's clock and the client's
  // Quirk Q-220: the game spells brakes "breaks", in names and in texts.
  bool breaksOn = false;              ///< brakes
  double positionReportInterval = 0;  ///< frames between position reports
  std::deque<Vector> positionQueue;   ///< received but not yet reached, next target first
  /// The tail, oldest vertex first. A vertex's `num` is its index.
  std::deque<clsTail> tails;
  /// Serial number of the oldest vertex. It rises when the oldest vertex is removed, so that the others needn't be
  /// renumbered.
  double tailBase = 0;
  bool alive = false;                  ///< false for a ghost
  std::vector<PlayerColour> captures;  ///< colours captured in this life
  std::int16_t kills = 0;              ///< captures since joining
  float speed = 0;                     ///< top speed, world units per frame at time scale 1
  std::array<PowerupState, powerupSlotCount> powerups;
  std::int16_t powerSlotLimit = 0;     ///< maximum number of powerups of all kinds
  bool awaitingFirstPosition = false;  ///< the next position places the player without a glide

  // Progress of the operations.
  double reportCounter = 0;          ///< frames since the last position report
  Millis lastAgeTick = 0;            ///< ms, tick of the last ageing pass
  bool steering = false;             ///< `moveAsOpponent` has set a velocity for its current target
  bool animFalling = false;          ///< the cells run backwards
  std::int16_t animFrame = 0;        ///< cell of the ball's sheet, 0 to 3
  std::int16_t animTick = 0;         ///< frames since the last change of the cell
  std::int32_t lastPowerupTick = 0;  ///< whole second of the last powerup tick

  Vector getPosition() const { return position; }
  double tailCount() const { return static_cast<double>(tails.size()); }
  double positionQueueCount() const { return static_cast<double>(positionQueue.size()); }
  std::int16_t captureCount() const { return static_cast<std::int16_t>(captures.size()); }

  // Life and score (life.cpp). Captures, kills and lives are displayed in the panel's row of the player's colour:
  // RuntimeFault if it has none.
  /// Begins a session: connected, alive, brakes on, with the initial stock. Keeps position and tail.
  void init(PlayerColour colour, std::int16_t playerIndex, std::int16_t serverNode, const std::string& name);
  /// Death puts the brakes on. Life shows the local player a tip.
  void setAlive(bool alive);
  /// Begins a new life at the ghost's position, with the brakes on and without captures.
  void respawn();
  /// Dies, with a sound if on screen, and one explosion particle for each capture of this life.
  void die();
  bool isAlive() const { return alive; }
  /// Adds a victim's colour to the captures. RuntimeFault "Overflow" beyond 32767 captures.
  void receiveCapture(PlayerColour colour);
  /// Sets the kills and displays them.
  void setKills(std::int16_t kills);
  /// Credits. Whole, except after a sale with a fraction.
  double funds() const { return funds_; }
  /// Sets the credits, rounding half to even, and displays them if the player is the local one.
  void funds(double credits);

  // The local player's movement (movement.cpp).
  /// Moves one frame by mouse and brakes, bounces off the world's edge, and reports the position every few frames.
  /// RuntimeFault if the canvas has no height.
  void move();
  /// Toggles the brakes.
  void toggleBreaks() { breaksOn = !breaksOn; }

  // Tails (tails.cpp).
  /// Adds the newest vertex at a world point, if alive and the limit of all vertices allows it.
  void addTail(Vector position);
  /// Removes vertex `num` and moves later ones up. Does nothing if there is no such vertex.
  void killTail(double num);
  /// The id of vertex `num`; empty if it is outside the tail. RuntimeFault if `num` is a fraction that rounds up to the
  /// tail's length.
  std::string getTailID(double num) const;
  /// The oldest vertex with this id or at exactly this position; -1 if there is none.
  double getTailNumByID(const std::string& id) const;
  double getTailNumByPos(Vector position) const;

  // Opponents and lag (opponents.cpp).
  /// Glides one frame towards the next queued position. Positions off screen are taken at once.
  void moveAsOpponent();
  /// The first position places the player, later ones are queued. Ignores points outside the world.
  void queuePosition(Vector position);
  /// World units per frame.
  void setVelocity(Vector value) { velocity = value; }
  /// Answers a ping and reports the position. `value` is the server's clock in seconds.
  void receivePing(std::int32_t value);
  /// Displays the server's measurement, in ms, next to the client's own.
  void receiveLatencyReport(std::int32_t value);
  /// In ms.
  std::int32_t getLag() const { return lag; }

  // Painting (rendering/playerPainting.cpp).
  /// Width of the ball's cell, canvas units.
  float getWidth() const;
  /// Paints tail, radar blip, laser and ball, or an arrow for an opponent off screen. Ages the tail, which can carry
  /// out captures.
  void paintSelf();
  /// Draws lightning along a segment in world units, different at every call.
  void paintChargedArc(Vector a, Vector b);
  /// Displays the kills next to the player's name (rendering/playerPanel.cpp).
  void displayKills();

  // Powerups (store/powerupRules.cpp).
  /// The number of owned powerups of all kinds. RuntimeFault "Overflow" beyond 16 bits.
  std::int16_t totalPowerups() const;
  /// Asks the server to start the local player's powerup. Refusals go to the console. RuntimeFault outside
  /// 0 to 5.
  void requestActivatePowerup(PowerupSlot slot);
  /// The server started a powerup, or ended it early. For a slot outside 0 to 5, `activatePowerup` raises RuntimeFault
  /// and `unactivatePowerup` does nothing.
  void activatePowerup(PowerupSlot slot);
  void unactivatePowerup(PowerupSlot slot);
  /// Subtracts one second from running activations whenever the clock's second has changed.
  void tickPowerups();

  // The store (store/store.cpp).
  /// Fills in the store's window, for the local player only.
  void populatePowerupsForm();
  /// Asks the server. With a full capacity, `purchaseItem` refuses by itself, with a text and a sound.
  void purchaseItem(PowerupSlot item);
  void sellItem(PowerupSlot item);
  /// The server's answers with the item's new stock and the new balance. For an item outside 0 to 5, a purchase sets
  /// the balance, then raises RuntimeFault.
  void purchaseAccepted(PowerupSlot item, std::int16_t stock, double funds);
  void sellItemAccepted(PowerupSlot item, std::int16_t stock, double funds);
  /// Updates the store's window, if visible, and shows a text at its bottom.
  void showStoreStatus(const std::string& text);

 private:
  void sendPosition();
  void sendVelocity();
  void ageTails();

  // The main window's panels (rendering/playerPanel.cpp).
  void displayLag();
  void displayFunds();
  void displayCapture(PlayerColour victimColour);
  void clearCaptureStrip();

  void paintBall(Vector centre);
  void advanceAnimation();
  void paintTail();
  void paintRadarBlip();
  void paintOffscreenArrow();
  void paintLaser();
  void paintPowerupCounts();

  double funds_ = 0;
};

}  // namespace kelvora
