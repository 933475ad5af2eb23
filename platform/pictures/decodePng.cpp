#include <png.h>

#include <cstring>

#include "platform/pictures/decode.h"

namespace kelvora {

namespace {

/// `format` is PNG_FORMAT_RGB or PNG_FORMAT_RGBA.
std::optional<Picture> decode(const FileBytes& bytes, png_uint_32 format) {
  png_image image;
  std::memset(&image, 0, sizeof image);
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) == 0) return std::nullopt;
  if (image.width > maxPictureSide || image.height > maxPictureSide) {
    png_image_free(&image);
    return std::nullopt;
  }
  image.format = format;
  std::vector<png_byte> samples(PNG_IMAGE_SIZE(image));
  constexpr png_color black{0, 0, 0};
  if (png_image_finish_read(&image, &black, samples.data(), 0, nullptr) == 0) return std::nullopt;

  Picture picture{static_cast<int>(image.width), static_cast<int>(image.height), {}};
  const std::size_t channels = PNG_IMAGE_SAMPLE_CHANNELS(format);
  picture.pixels.reserve(samples.size() / channels);
  for (std::size_t i = 0; i + channels <= samples.size(); i += channels) {
    const Pixel opacity = channels == 4 ? samples[i + 3] : 0;
    picture.pixels.push_back(opacity << 24 | toPixel(Colour{samples[i], samples[i + 1], samples[i + 2]}));
  }
  return picture;
}

}  // namespace

std::optional<Picture> decodePng(const FileBytes& bytes) { return decode(bytes, PNG_FORMAT_RGB); }
std::optional<Picture> decodeIcon(const FileBytes& bytes) { return decode(bytes, PNG_FORMAT_RGBA); }

}  // namespace kelvora
