#include "app/clockText.h"

#include <array>
#include <cstdio>

namespace kelvora {

std::string clockText(Millis time) {
  const long long seconds = time / 1000;
  std::array<char, 32> text{};
  if (seconds >= 3600) {
    std::snprintf(text.data(), text.size(), "%lld:%02lld:%02lld", seconds / 3600, seconds / 60 % 60, seconds % 60);
  } else {
    std::snprintf(text.data(), text.size(), "%lld:%02lld", seconds / 60, seconds % 60);
  }
  return text.data();
}

std::optional<Millis> timeFromText(std::string_view text) {
  constexpr std::size_t maxDigits = 6;
  Millis seconds = 0;
  int parts = 0;
  while (true) {
    const std::size_t colon = text.find(':');
    const std::string_view digits = text.substr(0, colon);
    if (digits.empty() || digits.size() > maxDigits || ++parts > 3) return std::nullopt;
    Millis part = 0;
    for (const char digit : digits) {
      if (digit < '0' || digit > '9') return std::nullopt;
      part = part * 10 + (digit - '0');
    }
    seconds = seconds * 60 + part;
    if (colon == std::string_view::npos) return seconds * 1000;
    text.remove_prefix(colon + 1);
  }
}

}  // namespace kelvora
