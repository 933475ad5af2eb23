#pragma once

#include <cstdint>

#include "raster/font.h"
#include "tools/headless/headlessClient.h"

namespace kelvora::bench {

/// A world without a screen, to paint the same frame again and again. Light: one player, particles and icons. Heavy:
/// six players with tails of 300 vertices on the canvas, shields up, and the world's upper edge in view.
class Scene : private HeadlessClient {
 public:
  /// With glyphs, there are also all texts of a game. Without, nothing prints.
  Scene(bool heavy, GlyphSource* glyphs);
  ~Scene();

  /// One frame. The clock stands still, but every tail gets its ageing pass.
  void paint();

 private:
  void fill();
  void write();

  std::int16_t messageAge_ = 251;  ///< of the message in the middle; it has ended
};

}  // namespace kelvora::bench
