// For systems without zlib.

#include "server/replays/compression.h"

namespace kelvora::server {

bool canCompress() { return false; }
std::string compressed(std::string_view) { return {}; }
std::optional<std::string> decompressed(std::string_view, std::size_t) { return std::nullopt; }

}  // namespace kelvora::server
