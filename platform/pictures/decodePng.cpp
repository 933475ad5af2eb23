#include <png.h>

#include <cstring>

#include "platform/pictures/decode.h"

namespace kelvora {

std::optional<Picture> decodePng(const FileBytes& bytes) {
  png_image image;
  std::memset(&image, 0, sizeof image);
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) == 0) return std::nullopt;
  if (image.width > maxPictureSide || image.height > maxPictureSide) {
    png_image_free(&image);
    return std::nullopt;
  }
  image.format = PNG_FORMAT_RGB;
  std::vector<png_byte> rgb(PNG_IMAGE_SIZE(image));
  constexpr png_color black{0, 0, 0};
  if (png_image_finish_read(&image, &black, rgb.data(), 0, nullptr) == 0) return std::nullopt;

  Picture picture{static_cast<int>(image.width), static_cast<int>(image.height), {}};
  picture.pixels.reserve(rgb.size() / 3);
  for (std::size_t i = 0; i + 2 < rgb.size(); i += 3) {
    picture.pixels.push_back(toPixel(Colour{rgb[i], rgb[i + 1], rgb[i + 2]}));
  }
  return picture;
}

}  // namespace kelvora
