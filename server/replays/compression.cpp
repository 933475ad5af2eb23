#include "server/replays/compression.h"

#include <zlib.h>

#include <algorithm>

namespace kelvora::server {

namespace {

constexpr std::size_t firstPiece = std::size_t{64} << 10;  // bytes

const Bytef* asBytes(std::string_view text) { return reinterpret_cast<const Bytef*>(text.data()); }
Bytef* asBytes(std::string& text, std::size_t from) { return reinterpret_cast<Bytef*>(text.data() + from); }

}  // namespace

bool canCompress() { return true; }

std::string compressed(std::string_view bytes) {
  uLongf size = compressBound(bytes.size());
  std::string out(size, '\0');
  if (compress2(asBytes(out, 0), &size, asBytes(bytes), bytes.size(), Z_DEFAULT_COMPRESSION) != Z_OK) return {};
  out.resize(size);
  return out;
}

std::optional<std::string> decompressed(std::string_view bytes, std::size_t maxSize) {
  z_stream stream{};
  if (inflateInit(&stream) != Z_OK) return std::nullopt;
  std::string out;
  std::size_t size = 0;
  int state = Z_OK;
  // zlib doesn't change its input.
  stream.next_in = const_cast<Bytef*>(asBytes(bytes));
  stream.avail_in = static_cast<uInt>(bytes.size());
  while (state == Z_OK && size <= maxSize) {
    out.resize(std::min(std::max(firstPiece, 2 * out.size()), maxSize + 1));
    stream.next_out = asBytes(out, size);
    stream.avail_out = static_cast<uInt>(out.size() - size);
    state = inflate(&stream, Z_NO_FLUSH);
    size = out.size() - stream.avail_out;
  }
  const bool isWhole = state == Z_STREAM_END && stream.avail_in == 0 && size <= maxSize;
  inflateEnd(&stream);
  if (!isWhole) return std::nullopt;
  out.resize(size);
  return out;
}

}  // namespace kelvora::server
