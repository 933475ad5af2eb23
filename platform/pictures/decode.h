#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "raster/picture.h"

namespace kelvora {

using FileBytes = std::vector<unsigned char>;

inline constexpr std::uint32_t maxPictureSide = 8192;  ///< pixels

/// Nothing if the bytes are not a complete, valid picture of that kind within the limits.
std::optional<Picture> decodePng(const FileBytes& bytes);
std::optional<Picture> decodeJpeg(const FileBytes& bytes);

}  // namespace kelvora
