#include "platform/pictures/pictureFile.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <initializer_list>
#include <utility>

#include "base/fault.h"
#include "platform/pictures/decode.h"

namespace kelvora {

namespace {

constexpr std::size_t maxFileSize = std::size_t{64} << 20;

std::optional<FileBytes> readWholeFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw RuntimeFault("File not found: " + path);
  FileBytes bytes;
  std::array<char, 4096> portion;  // small, because a stack that has grown stays in memory
  while (file) {
    file.read(portion.data(), portion.size());
    bytes.insert(bytes.end(), portion.begin(), portion.begin() + file.gcount());
    if (bytes.size() > maxFileSize) return std::nullopt;
  }
  if (file.bad()) return std::nullopt;
  return bytes;
}

bool startsWith(const FileBytes& bytes, std::initializer_list<unsigned char> mark) {
  return bytes.size() >= mark.size() && std::equal(mark.begin(), mark.end(), bytes.begin());
}

}  // namespace

PicturePointer loadPictureFile(const std::string& path) {
  const std::optional<FileBytes> bytes = readWholeFile(path);
  std::optional<Picture> picture;
  if (bytes && startsWith(*bytes, {0x89, 'P', 'N', 'G'})) picture = decodePng(*bytes);
  if (bytes && startsWith(*bytes, {0xFF, 0xD8})) picture = decodeJpeg(*bytes);
  if (!picture) throw RuntimeFault("Invalid picture: " + path);
  return std::make_shared<const Picture>(std::move(*picture));
}

}  // namespace kelvora
