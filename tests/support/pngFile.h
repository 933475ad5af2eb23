#pragma once

#include <filesystem>

#include "raster/picture.h"

namespace kelvora {

/// Writes a picture as a PNG file of three channels; a file of the name is replaced. False if that fails.
bool writePng(const std::filesystem::path& path, const Picture& picture);

}  // namespace kelvora
