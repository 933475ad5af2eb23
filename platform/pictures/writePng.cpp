#include "platform/pictures/writePng.h"

#include <png.h>

#include <cstring>
#include <vector>

namespace kelvora {

bool writePng(const std::filesystem::path& path, const Picture& picture) {
  png_image image;
  std::memset(&image, 0, sizeof image);
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(picture.width);
  image.height = static_cast<png_uint_32>(picture.height);
  image.format = PNG_FORMAT_RGB;
  std::vector<png_byte> rgb;
  rgb.reserve(picture.pixels.size() * 3);
  for (const Pixel pixel : picture.pixels) {
    for (const int shift : {16, 8, 0}) rgb.push_back(static_cast<png_byte>(pixel >> shift & 255));
  }
  return png_image_write_to_file(&image, path.c_str(), 0, rgb.data(), 0, nullptr) != 0;
}

}  // namespace kelvora
