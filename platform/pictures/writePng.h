#pragma once

#include <filesystem>

#include "raster/picture.h"

namespace kelvora {

/// Writes a picture as a PNG file of three channels, replacing an existing one. False on failure.
bool writePng(const std::filesystem::path& path, const Picture& picture);

}  // namespace kelvora
