#pragma once

#include <string>

#include "raster/picture.h"

namespace kelvora {

/// The picture in a PNG or JPEG file, told apart by their first bytes; transparent parts stand on black. `path` is as
/// the file system spells it. A file that is missing, damaged, of another kind or larger than 8192 pixels on a side is
/// RuntimeFault.
PicturePointer loadPictureFile(const std::string& path);

}  // namespace kelvora
