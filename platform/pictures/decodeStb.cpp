#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>

#include "platform/pictures/decode.h"

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_JPEG
#define STBI_NO_STDIO
#define STBI_NO_LINEAR
#define STBI_NO_HDR
#define STBI_MAX_DIMENSIONS 8192
#include <stb_image.h>

// Decodes JPEG files everywhere: libjpeg would be half a megabyte in memory for one picture. STBI_ONLY_PNG adds PNG
// files for browsers and Windows, with the same pixels as from libpng. But their checksums aren't checked, and
// transparency is refused.

namespace kelvora {

static_assert(STBI_MAX_DIMENSIONS == maxPictureSide);

namespace {

std::optional<Picture> decode(const FileBytes& bytes) {
  int width = 0;
  int height = 0;
  int channels = 0;
  const auto size = static_cast<int>(bytes.size());
  if (stbi_info_from_memory(bytes.data(), size, &width, &height, &channels) == 0) return std::nullopt;
  const bool hasTransparency = channels == STBI_grey_alpha || channels == STBI_rgb_alpha;
  if (hasTransparency) return std::nullopt;
  const std::unique_ptr<stbi_uc, decltype(&stbi_image_free)> rgb(
      stbi_load_from_memory(bytes.data(), size, &width, &height, &channels, STBI_rgb), &stbi_image_free);
  if (!rgb) return std::nullopt;

  Picture picture{width, height, {}};
  const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  picture.pixels.reserve(count);
  for (std::size_t i = 0; i < count * 3; i += 3) {
    picture.pixels.push_back(toPixel(Colour{rgb.get()[i], rgb.get()[i + 1], rgb.get()[i + 2]}));
  }
  return picture;
}

/// True if a Huffman table claims more codes than there are bytes. The decoder would write them beyond its own table.
bool hasOversizedTable(const FileBytes& jpeg) {
  constexpr std::array<unsigned char, 2> marker{0xFF, 0xC4};
  constexpr std::size_t lengths = 16;  // a table begins with its kind and the number of codes of each length
  constexpr int maxCodes = 256;
  const auto byteAt = [&jpeg](std::size_t at) { return at < jpeg.size() ? jpeg[at] : 0; };
  for (auto found = jpeg.begin();; ++found) {
    found = std::search(found, jpeg.end(), marker.begin(), marker.end());
    if (found == jpeg.end()) return false;
    std::size_t at = static_cast<std::size_t>(found - jpeg.begin()) + marker.size();
    const std::size_t end = std::min(at + static_cast<std::size_t>(byteAt(at) << 8 | byteAt(at + 1)), jpeg.size());
    for (at += 2; at < end;) {
      int codes = 0;
      for (std::size_t i = 1; i <= lengths; ++i) codes += byteAt(at + i);
      if (codes > maxCodes) return true;
      at += 1 + lengths + static_cast<std::size_t>(codes);
    }
  }
}

}  // namespace

#ifdef STBI_ONLY_PNG
std::optional<Picture> decodePng(const FileBytes& bytes) { return decode(bytes); }
#endif
std::optional<Picture> decodeJpeg(const FileBytes& bytes) {
  if (hasOversizedTable(bytes)) return std::nullopt;
  return decode(bytes);
}

}  // namespace kelvora
