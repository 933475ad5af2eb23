#include <memory>

#include "platform/pictures/decode.h"

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_JPEG
#define STBI_ONLY_PNG
#define STBI_NO_STDIO
#define STBI_NO_LINEAR
#define STBI_NO_HDR
#define STBI_MAX_DIMENSIONS 8192
#include <stb_image.h>

// The decoder of the browser and Windows builds, in place of decodePng.cpp and decodeJpeg.cpp. It gives the same pixels
// for PNG files, but doesn't check their checksums and refuses transparency. JPEG colours may differ by a rounding.

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

}  // namespace

std::optional<Picture> decodePng(const FileBytes& bytes) { return decode(bytes); }
std::optional<Picture> decodeJpeg(const FileBytes& bytes) { return decode(bytes); }

}  // namespace kelvora
