#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "base/vector.h"
#include "particles/clsParticle.h"
#include "raster/colour.h"
#include "simulation/clsPlayer.h"

namespace kelvora {

/// One line of the console on the canvas.
struct ChatLine {
  std::string text;
  Colour colour;
  std::int16_t size = 0;  ///< points
};

/// The captures that wait for one tail vertex to end.
struct KillerTail {
  std::int16_t owner = 0;  ///< playerIndex of the winner
  std::string tailID;
  std::vector<std::int16_t> victims;  ///< playerIndex of each loser, in order of arrival
  std::string location;
};

/// A bearing as the pointer and the steering use it.
struct Bearing {
  float angle = 0;  ///< from the vertical, 350 to the full circle: 0 to 87.5
  std::uint8_t quadrant = 0;
};

/// The world's state, shared by every room, and the routines that belong to no one room. Everything is touched by one
/// thread only.
namespace modMain {

inline constexpr float worldSize = 100000;  ///< world units, on both axes from 0

/// The world's state: plain values that every room reads and writes. One thread touches them.
struct World {
  // Quirk Q-225: it keeps its last value when the mouse leaves the canvas, and the ball flies on towards that point.
  Vector mousePos;  ///< last mouse position on the canvas, canvas units
  clsPlayer localPlayer;
  std::int16_t opponentCount = 0;   ///< used slots of `opponents`; only ever grows
  std::deque<clsPlayer> opponents;  ///< growing moves no player in memory
  double particleCount = 0;         ///< used slots of `particles`
  std::vector<clsParticle> particles;
  std::int16_t steerAngle = 0;             ///< 0 to 88, see Bearing
  std::int16_t steerQuadrant = 0;          ///< 1 to 4, 0 before the first frame
  std::array<ChatLine, 8> chatLines;       ///< index 0 newest
  std::string debugText;                   ///< lines of the canvas's upper left corner, built anew in every frame
  std::array<std::string, 6> colourNames;  ///< by player colour, as chat lines name them
  // Quirk Q-236: a list that is walked, moved and painted in every frame, and never filled.
  double spareParticleCount = 0;
  std::vector<clsParticle> spareParticles;
  double explosionCount = 0;  ///< used slots of `explosionParticles`
  std::vector<clsParticle> explosionParticles;
  std::vector<KillerTail> killerTails;
  std::string roundMessage;                    ///< the server's text at the end of a round
  std::int32_t frameTime = 0;                  ///< ms, average paint time
  std::array<std::int32_t, 101> frameTimes{};  ///< ms, newest first
  bool survivalMode = false;
  Vector survivalOrigin;              ///< world units
  float survivalMaxDistance = 0;      ///< world units from the origin
  std::int16_t netParticleCount = 0;  ///< used slots of `netParticles`; only ever grows
  std::deque<clsParticle> netParticles;
  std::string centreMessage;
  std::int16_t centreMessageAge = 0;  ///< frames at time scale 1; not shown above 250
  std::array<std::string, 20> tips;
  std::int16_t nextTip = 0;  ///< index of `tips`

  // The pulse of the world's border.
  bool borderShrinking = false;
  std::uint8_t borderWidth = 0;    ///< half the line's width, 1 to 4 pixels once painted
  std::int16_t borderCounter = 0;  ///< frames since the width changed

  // What the bounds below count.
  std::size_t queuedPositions = 0;
  std::size_t nameBytes = 0;
};

/// Assigning {} puts everything back to its value at the start of the process.
extern World world;

// What a server can make the client keep, all in all: far beyond any game, so that one of ill will cannot fill the
// memory, nor make a frame last for ever. What would go beyond is dropped, or is a fault of its message.
inline constexpr std::size_t mostTailVertices = 250'000;       ///< of all players
inline constexpr std::size_t mostQueuedPositions = 1'000'000;  ///< of all players and network particles
inline constexpr std::size_t mostKillerTails = 1'000;
inline constexpr std::size_t mostVictims = 1'000;  ///< of one killer tail
inline constexpr std::size_t mostExplosionParticles = 1'000;
inline constexpr std::size_t mostNameBytes = std::size_t{16} << 20;  ///< of opponents and network particles
/// Counts a name that is kept for good; RuntimeFault "Out of memory" beyond the limit.
void keepName(const std::string& name);

// Start-up and loop (core/startUp.cpp, core/mainLoop.cpp).
/// The program's entry; does not return.
void startGame();
/// The tables colourNames and tips as the game has them.
void fillColourNames();
void fillTips();
/// Endless; one pass is one frame.
void mainLoop();
/// One pass of the loop without its DoEvents: what a connected frame does.
void runFrame();
/// frameTime / 10, at least 1: every per-frame speed is multiplied by it.
double getTimeScale();

// Helpers (core/worldState.cpp).
float getDistance(Vector a, Vector b);
bool isOnScreen(Vector worldPoint);
Vector getLocalPosition();
/// -1 for the local player, else a slot of `opponents`; an unknown node yields 0.
std::int16_t getPlayerIndex(std::int16_t node);
std::int16_t getServerNode(std::int16_t index);
std::string getPlayerName(std::int16_t index);
/// The player of an index: -1 local, else a slot; outside the slots RuntimeFault.
clsPlayer& playerAt(std::int16_t index);
void showCentreMessage(const std::string& text);
void showNextTip();
Vector getMousePos();
void setMousePos(float x, float y);
std::int16_t getSteerAngle();
std::int16_t getSteerQuadrant();

// Input (core/input.cpp).
void requestPowerup(std::int16_t number);
void toggleLocalBreaks();

// Captures (simulation/killerTails.cpp).
void addKillerTail(std::int16_t winnerNode, std::int16_t loserNode, float x, float y);
std::int16_t findKillerTail(std::int16_t owner, const std::string& tailID);
void checkKillerTail(std::int16_t owner, const std::string& tailID);
void executeKillerTail(std::int16_t index);
void removeKillerTails(std::int16_t owner);
void executeCapture(std::int16_t winnerNode, std::int16_t loserNode);
void killTailOf(std::int16_t ownerIndex, double num);

// The survival mode (simulation/survival.cpp). Nothing in the game turns it on.
bool isSurvivalMode();
/// Ends the run once for every background particle that touches the local player.
void checkSurvival();
/// Turns the mode off and tells the record on the console.
void endSurvival();

// Particles (particles/pools.cpp).
void createParticleField();
void addExplosion(Vector point, std::int16_t count);
void removeExplosionParticle(std::int16_t index);
bool isStarsMode();
bool coinFlip();
std::int16_t allocNetParticle();
void receiveParticleNew(const std::string& id, std::int16_t kind, float x, float y, float dx, float dy);
void receiveParticlePosition(const std::string& id, float x, float y);
void receiveParticleRemove(const std::string& id);

// The picture (rendering/).
Vector getCanvasCentre();
Vector worldToScreen(Vector worldPoint);
Bearing getBearing(Vector from, Vector to);
void paintFrame();
void paintWorldBorder();
void paintPointer();
void addDebugText(const std::string& line);
void paintTextLines();
void paintCentreMessage();
/// Takes the record of the running survival mode and ties the local player to its start by a line.
void paintSurvival();
void paintActionIcons();
void showStartLogo();
void hideStartLogo();

// The store (store/store.cpp).
/// Opens the store's window over the running game, connected or not, alive or not.
void openStore();

/// The part of a disconnection that lies in the world's state.
void resetConnectionState();

}  // namespace modMain

}  // namespace kelvora
