#pragma once

#include <cstdint>

namespace kelvora {

/// The one generator of uniform random numbers, 24 bits of state. The same seed gives the same draws on every machine.
class RandomGenerator {
 public:
  /// Starts the sequence from `seed`; every bit of its single-precision value counts.
  void randomize(float seed);

  /// The next number, at least 0 and below 1.
  float next();

  /// With a positive argument the next number, with 0 the last one again; a negative argument restarts the sequence
  /// from that argument, so that equal arguments give equal numbers.
  float next(float argument);

 private:
  std::uint32_t state_ = 0x50000;
};

}  // namespace kelvora
