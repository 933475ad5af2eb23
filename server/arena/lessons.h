#pragma once

#include "base/millis.h"

namespace kelvora::server {

/// The lessons of a coach.
enum class Lesson { brakes, opponents, circle, capture, spawn, store };

/// The lessons that a player has had.
struct Lessons {
  unsigned int given = 0;  ///< one bit per lesson
  bool wasAlive = false;
  Millis nextAt = 0;  ///< no line before that
};

}  // namespace kelvora::server
