#pragma once

namespace kelvora {

/// A point or displacement in the world or on the canvas, in world units. One world unit is one canvas unit (twip).
struct Vector {
  float x = 0;
  float y = 0;

  friend bool operator==(const Vector&, const Vector&) = default;
};

}  // namespace kelvora
