#pragma once

namespace kelvora {

/// A point or displacement of the world or the canvas, in world units; one world unit is one canvas unit (twip).
struct Vector {
  float x = 0;
  float y = 0;

  friend bool operator==(const Vector&, const Vector&) = default;
};

}  // namespace kelvora
