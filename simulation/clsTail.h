#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "base/vector.h"
#include "platform/backend.h"
#include "raster/colour.h"

namespace kelvora {

/// One vertex of a tail. It lives a little over two seconds of real time and belongs to its owner's `tails`.
class clsTail {
 public:
  /// Unlike that of any other vertex, but for chance: owner, second of the day and a draw.
  const std::string& tailID() const { return tailID_; }
  // Quirk Q-048: killer and isLong take a value and keep nothing; no vertex is ever looped.
  void killer(bool) {}
  bool looped() const { return false; }
  /// The vertex's index in its owner's tail.
  void num(double value);
  double num() const;
  /// One step of ageing; True if the vertex has just ended and is gone from its owner's tail, this object with it.
  bool age();
  /// 10 ms units.
  std::int16_t getAge() const { return age_; }
  /// Laid with charged tails: lightning runs along it.
  bool isCharged() const { return isCharged_; }
  void isCharged(bool value) { isCharged_ = value; }
  void isLong(bool) {}

  /// Begins vertex `num` of an owner, a playerIndex, at a world point. Makes one draw.
  void initTail(double num, std::int16_t ownerIndex, Vector position);
  /// Fires the capture that waits for this vertex, then removes it from its owner's tail.
  void expire();
  /// World units.
  const Vector& getPosition() const { return position_; }
  /// The colour of the owner at this vertex's age, darker with every 10 ms.
  Colour getColour(std::int16_t colour) const;

  /// Vertices of all players.
  static std::size_t count() { return Counted::count; }

 private:
  struct Counted {
    Counted() { ++count; }
    Counted(const Counted&) { ++count; }
    Counted& operator=(const Counted&) = default;
    ~Counted() { --count; }
    static inline std::size_t count = 0;
  };

  friend class clsPlayer;  // moves serials when a vertex leaves the middle of the tail

  double serial_ = 0;            // num plus the owner's tailBase
  std::int16_t age_ = 0;         // 10 ms units, dies above 200
  std::int16_t ownerIndex_ = 0;  // playerIndex
  Vector position_;              // world units
  std::string tailID_;
  bool isCharged_ = false;
  Tick lastStep_ = 0;  // 0 until the first step
  [[no_unique_address]] Counted counted_;
};

}  // namespace kelvora
