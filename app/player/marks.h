#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "base/millis.h"

namespace kelvora::player {

/// Something to jump to.
struct Mark {
  enum class Kind : std::uint8_t { Capture, Line };
  Millis time = 0;  ///< ms since the start
  Kind kind = Kind::Capture;
  bool isOwn = false;  ///< the local player captures or is captured
  std::string text;    ///< of a line
};

/// Finds captures and lines of the console in a running game.
class MarkFinder {
 public:
  /// Compares the world with that of the last call. Call it after each frame.
  std::vector<Mark> find(Millis now);

 private:
  struct Player {
    bool isAlive = false;
    int kills = 0;
  };
  void findCaptures(std::vector<Mark>& found, Millis now);
  void findLines(std::vector<Mark>& found, Millis now);

  std::vector<Player> players_;  ///< the local one first
  std::array<std::string, 8> lines_;
};

}  // namespace kelvora::player
