#include <vector>

#include "platform/pictures/writePng.h"

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#include <stb_image_write.h>

namespace kelvora {

bool writePng(const std::filesystem::path& path, const Picture& picture) {
  std::vector<unsigned char> rgb;
  rgb.reserve(picture.pixels.size() * 3);
  for (const Pixel pixel : picture.pixels) {
    for (const int shift : {16, 8, 0}) rgb.push_back(static_cast<unsigned char>(pixel >> shift & 255));
  }
  return stbi_write_png(path.string().c_str(), picture.width, picture.height, 3, rgb.data(), picture.width * 3) != 0;
}

}  // namespace kelvora
