#pragma once

#include "raster/copyRows.h"

namespace kelvora {

// The game's pixels have 0 in their highest byte. A window's image with an alpha channel would show them as
// transparent.

/// Copies as `copyRows` does, with 255 in the highest byte of each pixel.
void copyOpaque(const Rows& rows);

/// True if the target has the pixels that `copyOpaque` would write.
[[nodiscard]] bool isOpaqueCopy(const Rows& rows);

}  // namespace kelvora
