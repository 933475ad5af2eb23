#include "platform/recording/gameState.h"

#include "base/bitCast.h"

namespace kelvora::recording {

void Sum::add(float value) { add(std::uint64_t{bitCast<std::uint32_t>(value)}); }

void Sum::add(const std::string& text) {
  add(std::uint64_t{text.size()});
  for (const char letter : text) add(std::uint64_t{static_cast<unsigned char>(letter)});
}

void Sum::add(const std::uint32_t* pixels, std::size_t count) {
  add(std::uint64_t{count});
  std::size_t i = 0;
  for (; i + 1 < count; i += 2) add(std::uint64_t{pixels[i]} << 32 | pixels[i + 1]);
  if (i < count) add(std::uint64_t{pixels[i]});
}

}  // namespace kelvora::recording
