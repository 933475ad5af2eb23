#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "base/vector.h"
#include "platform/backend.h"
#include "protocol/rules.h"
#include "raster/colour.h"

namespace kelvora {

/// One vertex of a tail. It lives a little over two seconds of real time in its owner's `tails`.
class clsTail {
 public:
  /// A vertex of the tail with this serial number of its oldest vertex.
  explicit clsTail(const double& base) : base_(&base) {}

  /// Owner, second of the day and a random number. Two vertices have the same id only by chance.
  const std::string& tailID() const { return tailID_; }
  // Quirk Q-048: killer and isLong store nothing, and no vertex is ever looped.
  void killer(bool) {}
  bool looped() const { return false; }
  /// The vertex's index in its tail.
  void num(double value);
  double num() const;
  /// Ages by one step. True if the vertex has expired. It has then been removed from its owner's tail, and this object
  /// is destroyed.
  bool age();
  /// Age in units of 10 ms.
  std::int16_t getAge() const { return age_; }
  /// True if laid while the tail was charged: lightning runs along it.
  bool isCharged() const { return isCharged_; }
  void isCharged(bool value) { isCharged_ = value; }
  void isLong(bool) {}

  /// Initialises vertex `num` of an owner (a playerIndex) at a world point. Draws one random number.
  void initTail(double num, std::int16_t ownerIndex, Vector position);
  /// Carries out the captures pending on this vertex, then removes it from its owner's tail.
  void expire();
  /// In world units.
  const Vector& getPosition() const { return position_; }
  /// A player colour at this vertex's age, darker with every 10 ms (rendering/tailPainting.cpp).
  Colour getColour(PlayerColour colour) const;

  /// The number of vertices of all players.
  static std::size_t count() { return Counted::count; }

 private:
  struct Counted {
    Counted() { ++count; }
    Counted(const Counted&) { ++count; }
    Counted& operator=(const Counted&) = default;
    ~Counted() { --count; }
    static inline std::size_t count = 0;
  };

  friend class clsPlayer;  // updates serials when a vertex is removed from the middle of the tail

  const double* base_;           // the tailBase of the player with this tail
  double serial_ = 0;            // num plus the tailBase
  std::int16_t age_ = 0;         // 10 ms units, expires above 200
  std::int16_t ownerIndex_ = 0;  // playerIndex
  Vector position_;              // world units
  std::string tailID_;
  bool isCharged_ = false;
  Millis lastStep_ = 0;  // 0 until the first step
  [[no_unique_address]] Counted counted_;
};

}  // namespace kelvora
