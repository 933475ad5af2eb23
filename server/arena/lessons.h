#pragma once

#include "base/millis.h"

namespace kelvora::server {

/// What a coach teaches.
enum class Lesson { brakes, opponents, circle, capture, spawn, store };

/// What a player has learned.
struct Lessons {
  unsigned int given = 0;  ///< one bit per lesson
  bool wasAlive = false;
  Millis nextAt = 0;  ///< no line before that
};

}  // namespace kelvora::server
