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

  // What core/bounds.h counts.
  std::size_t queuedPositions = 0;
  std::size_t nameBytes = 0;
};

/// Assigning {} puts everything back to its value at the start of the process.
extern World world;

}  // namespace modMain

}  // namespace kelvora
