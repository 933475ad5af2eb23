#pragma once

#include "platform/control.h"
#include "raster/surface.h"
#include "rendering/frmGfx.h"

namespace kelvora {

/// The upper left corner of a sheet's cell, in twips.
struct Cell {
  const SheetImage& sheet;
  float left = 0;
  float top = 0;
};

/// The raster operations for a sprite's two copies.
struct SpriteOperations {
  RasterOperation matte;
  RasterOperation image;
};
/// The matte cuts a black hole in the sprite's shape, and the image fills it.
inline constexpr SpriteOperations normalSprite{SRCAND, SRCPAINT};
/// A bright patch that shows the image's colours only inside the sprite's shape.
inline constexpr SpriteOperations exchangedSprite{SRCPAINT, SRCAND};

/// Paints a sprite: the matte's cell, then the image's cell, both in the size of `place`.
void paintSprite(Surface& surface, const Cell& matte, const Cell& image, const Place& place,
                 SpriteOperations operations = normalSprite);

}  // namespace kelvora
