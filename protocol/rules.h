#pragma once

#include <array>
#include <cstdint>

namespace kelvora {

/// A player's colour, numbered as on the wire. A number from the wire may be outside the enum.
enum PlayerColour : std::int16_t { redPlayer, yellowPlayer, greenPlayer, cyanPlayer, bluePlayer, purplePlayer };
inline constexpr std::array<PlayerColour, 6> playerColours = {redPlayer,  yellowPlayer, greenPlayer,
                                                              cyanPlayer, bluePlayer,   purplePlayer};

/// Rules of the game that the client, the server and its bots share. Distances are in world units. A frame takes 10 ms.
namespace rules {

inline constexpr float worldSize = 100'000;          ///< on both axes, from 0
inline constexpr float wallInset = 1'000;            ///< a ball that crosses an edge of the world lands this far inside
inline constexpr double ballRadius = 49 * 15 / 2.0;  ///< the ball's picture is 49 pixels wide, of 15 units each

inline constexpr float topStep = 300;               ///< of a living player per frame, the sum of both axes
inline constexpr double topSpeed = topStep / 10.0;  ///< the same per ms
inline constexpr float axisClamp = 300;             ///< maximum step along one axis per frame, unless a turbo runs
inline constexpr double turboFactor = 3;            ///< of the top step
inline constexpr double ghostFactor = 2;            ///< of the top step
inline constexpr double brakeRate = 3;              ///< how much the brakes shorten the step along each axis per frame
inline constexpr int framesPerReport = 4;           ///< between two position reports
inline constexpr int reportInterval = 10 * framesPerReport;  ///< ms, at the design pace

inline constexpr int vertexLifetime = 2'000;  ///< ms, without an Extra Long Tail

inline constexpr int colourCount = playerColours.size();
inline constexpr std::array<const char*, colourCount> colourNames = {"Red",  "Yellow", "Green",
                                                                     "Cyan", "Blue",   "Purple"};

}  // namespace rules

}  // namespace kelvora
