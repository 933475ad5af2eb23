#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "raster/picture.h"

namespace kelvora {

using FileBytes = std::vector<unsigned char>;

inline constexpr std::uint32_t maxPictureSide = 8192;  ///< pixels, limit of width and height

/// Decodes a file. Nothing if it isn't a complete, valid picture of that kind, or larger than `maxPictureSide`.
std::optional<Picture> decodePng(const FileBytes& bytes);
std::optional<Picture> decodeJpeg(const FileBytes& bytes);
/// Keeps a PNG file's transparency: the top byte of each pixel is its opacity. Only where libpng is the decoder.
std::optional<Picture> decodeIcon(const FileBytes& bytes);

}  // namespace kelvora
