#include <csetjmp>
#include <cstdio>

#include <jpeglib.h>

#include "platform/pictures/decode.h"

namespace kelvora {

namespace {

struct ErrorHandler {
  jpeg_error_mgr manager;  // must be first: the library passes a pointer to it
  std::jmp_buf giveUp;
};

void giveUp(j_common_ptr decoder) { std::longjmp(reinterpret_cast<ErrorHandler*>(decoder->err)->giveUp, 1); }

void keepSilent(j_common_ptr) {}

/// Decodes into `picture`. Errors jump out of this function, so it must not have locals with destructors.
bool decodeInto(Picture& picture, std::vector<JSAMPLE>& row, const FileBytes& bytes) {
  ErrorHandler errors;
  jpeg_decompress_struct decoder;
  decoder.err = jpeg_std_error(&errors.manager);
  errors.manager.error_exit = giveUp;
  errors.manager.output_message = keepSilent;
  if (setjmp(errors.giveUp) != 0) {
    jpeg_destroy_decompress(&decoder);
    return false;
  }
  jpeg_create_decompress(&decoder);
  jpeg_mem_src(&decoder, bytes.data(), static_cast<unsigned long>(bytes.size()));
  jpeg_read_header(&decoder, TRUE);
  if (decoder.image_width > maxPictureSide || decoder.image_height > maxPictureSide) {
    jpeg_destroy_decompress(&decoder);
    return false;
  }
  decoder.out_color_space = JCS_RGB;
  // The exact integer transform, so that every machine gets the same pixels.
  decoder.dct_method = JDCT_ISLOW;
  jpeg_start_decompress(&decoder);
  picture.width = static_cast<int>(decoder.output_width);
  picture.height = static_cast<int>(decoder.output_height);
  picture.pixels.reserve(std::size_t{decoder.output_width} * decoder.output_height);
  row.resize(std::size_t{decoder.output_width} * 3);
  while (decoder.output_scanline < decoder.output_height) {
    JSAMPROW rows[] = {row.data()};
    jpeg_read_scanlines(&decoder, rows, 1);
    for (std::size_t i = 0; i < row.size(); i += 3) {
      picture.pixels.push_back(toPixel(Colour{row[i], row[i + 1], row[i + 2]}));
    }
  }
  jpeg_finish_decompress(&decoder);
  const bool undamaged = errors.manager.num_warnings == 0;
  jpeg_destroy_decompress(&decoder);
  return undamaged;
}

}  // namespace

std::optional<Picture> decodeJpeg(const FileBytes& bytes) {
  Picture picture;
  std::vector<JSAMPLE> row;
  if (!decodeInto(picture, row, bytes)) return std::nullopt;
  return picture;
}

}  // namespace kelvora
