#pragma once

#include <string>

#include "raster/picture.h"

namespace kelvora {

/// Loads a PNG or JPEG file, recognised by its first bytes. Transparent parts become black. `path` uses the file
/// system's encoding. RuntimeFault if the file is missing, damaged, of another kind, larger than 64 MiB, or larger than
/// 8192 pixels on a side.
PicturePointer loadPictureFile(const std::string& path);

}  // namespace kelvora
