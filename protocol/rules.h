#pragma once

#include <array>

/// Rules of the game that the client, the server and its bots keep to alike. Distances are world units; a frame is one
/// of 10 ms.
namespace kelvora::rules {

inline constexpr float worldSize = 100'000;          ///< on both axes, from 0
inline constexpr float wallInset = 1'000;            ///< a ball that crosses an edge of the world lands this far inside
inline constexpr double ballRadius = 49 * 15 / 2.0;  ///< the ball's picture is 49 pixels wide, of 15 units each

inline constexpr float topStep = 300;               ///< of a living player in a frame, both axes together
inline constexpr double topSpeed = topStep / 10.0;  ///< the same in a ms
inline constexpr float axisClamp = 300;             ///< the largest step along one axis in a frame, unless a turbo runs
inline constexpr double turboFactor = 3;            ///< of the top step
inline constexpr double ghostFactor = 2;            ///< of the top step
inline constexpr double brakeRate = 3;              ///< what brakes take off the step along each axis, in each frame
inline constexpr int framesPerReport = 4;           ///< from one report of a position to the next

inline constexpr int vertexLifetime = 2'000;  ///< ms, of a tail without the extended-tail powerup

inline constexpr int colourCount = 6;
inline constexpr std::array<const char*, colourCount> colourNames = {"Red",  "Yellow", "Green",
                                                                     "Cyan", "Blue",   "Purple"};

}  // namespace kelvora::rules
