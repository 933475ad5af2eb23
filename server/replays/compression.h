#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kelvora::server {

/// False where the server has no zlib. The other two then return nothing.
bool canCompress();
std::string compressed(std::string_view bytes);
/// The original bytes. Nothing if there are more than `maxSize` of them, or if these are not a whole stream.
std::optional<std::string> decompressed(std::string_view bytes, std::size_t maxSize);

}  // namespace kelvora::server
