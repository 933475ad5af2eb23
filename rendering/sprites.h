#pragma once

#include "platform/control.h"
#include "raster/surface.h"
#include "rendering/frmGfx.h"

namespace kelvora {

/// The upper left corner of one cell of a sheet, twips.
struct Cell {
  const SheetImage& sheet;
  float left = 0;
  float top = 0;
};

/// How the two copies of a sprite join the surface.
struct SpriteOperations {
  RasterOperation matte;
  RasterOperation image;
};
/// The matte punches a black hole in the sprite's shape and the image is laid into it.
inline constexpr SpriteOperations normalSprite{SRCAND, SRCPAINT};
/// A bright patch with the image's colours inside the sprite's shape only.
inline constexpr SpriteOperations exchangedSprite{SRCPAINT, SRCAND};

/// Puts a sprite on the surface: first the cell of the matte, then the cell of the image, both of the size of `place`.
void paintSprite(Surface& surface, const Cell& matte, const Cell& image, const Place& place,
                 SpriteOperations operations = normalSprite);

}  // namespace kelvora
