#pragma once

#include <cstdint>

namespace kelvora {

/// The game's uniform random numbers, with 24 bits of state. The same seed gives the same numbers on every machine.
class RandomGenerator {
 public:
  /// Starts the sequence from `seed`. Every bit of its single-precision value counts.
  void randomize(float seed);

  /// The next number, from 0 up to but excluding 1.
  float next();

  /// A positive argument returns the next number, 0 repeats the last one. A negative argument restarts the sequence
  /// from that argument, so equal arguments return equal numbers.
  float next(float argument);

 private:
  std::uint32_t state_ = 0x50000;
};

}  // namespace kelvora
