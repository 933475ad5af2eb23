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

/// A line of the console on the canvas.
struct ChatLine {
  std::string text;
  Colour colour;
  std::int16_t size = 0;  ///< points
};

/// The captures pending on one tail vertex.
struct KillerTail {
  std::int16_t owner = 0;             ///< playerIndex of the winner
  std::string tailID;                 ///< of the winner's vertex
  std::vector<std::int16_t> victims;  ///< playerIndex of each loser, in order of arrival
  std::string location;               ///< of that vertex, as text
};

namespace modMain {

/// The world's state: plain values that every room reads and writes, all on one thread.
struct World {
  // Quirk Q-225: keeps its last value when the mouse leaves the canvas, so the ball flies on towards that point.
  Vector mousePos;                         ///< last mouse position on the canvas, canvas units
  clsPlayer localPlayer;                   ///< its index is localIndex once logged in
  std::int16_t opponentCount = 0;          ///< used slots of `opponents`; never shrinks
  std::deque<clsPlayer> opponents;         ///< a deque, because growing must not move players
  double particleCount = 0;                ///< used slots of `particles`
  std::vector<clsParticle> particles;      ///< the background
  std::int16_t steerAngle = 0;             ///< 0 to 88, see Bearing
  std::int16_t steerQuadrant = 0;          ///< 1 to 4; 0 before the first frame
  std::array<ChatLine, 8> chatLines;       ///< newest first
  std::string debugText;                   ///< lines in the canvas's upper left corner, rebuilt in every frame
  std::array<std::string, 6> colourNames;  ///< indexed by player colour, as in chat lines
  // Quirk Q-236: a list that is moved and painted in every frame but never filled.
  double spareParticleCount = 0;
  std::vector<clsParticle> spareParticles;
  double explosionCount = 0;  ///< used slots of `explosionParticles`
  std::vector<clsParticle> explosionParticles;
  std::vector<KillerTail> killerTails;
  std::string roundMessage;                    ///< the server's text for the end of a round
  std::int32_t frameTime = 0;                  ///< ms, average paint time
  std::array<std::int32_t, 101> frameTimes{};  ///< ms, newest first
  bool survivalMode = false;                   ///< see simulation/survival.h
  Vector survivalOrigin;                       ///< world units
  float survivalMaxDistance = 0;               ///< world units from the origin
  std::int16_t netParticleCount = 0;           ///< used slots of `netParticles`; never shrinks
  std::deque<clsParticle> netParticles;        ///< moved by the server
  std::string centreMessage;                   ///< shown in the middle of the canvas
  std::int16_t centreMessageAge = 0;           ///< frames at time scale 1; hidden above 250
  std::array<std::string, 20> tips;            ///< shown in turn at each respawn
  std::int16_t nextTip = 0;                    ///< index into `tips`

  // The pulse of the world's border.
  bool borderShrinking = false;
  std::uint8_t borderWidth = 0;    ///< half the line's width in pixels, 1 to 4 once painted
  std::int16_t borderCounter = 0;  ///< frames since the width changed

  // Counters for the limits in core/bounds.h.
  std::size_t queuedPositions = 0;
  std::size_t nameBytes = 0;
};

/// Assign {} to reset everything to its initial value.
inline World world;

}  // namespace modMain

}  // namespace kelvora
