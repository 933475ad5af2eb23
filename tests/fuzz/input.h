#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kelvora::fuzz {

/// The bytes that determine a run, consumed from the left. Beyond the end it returns zeros and empty texts.
class Input {
 public:
  Input(const void* data, std::size_t size) : text_(size == 0 ? "" : static_cast<const char*>(data), size) {}

  bool isEmpty() const { return text_.empty(); }
  std::uint8_t byte() {
    if (text_.empty()) return 0;
    const char first = text_.front();
    text_.remove_prefix(1);
    return static_cast<std::uint8_t>(first);
  }
  std::uint64_t number(int bytes) {
    std::uint64_t value = 0;
    for (int i = 0; i < bytes; ++i) value = value << 8 | byte();
    return value;
  }
  std::string_view take(std::size_t size) {
    const std::string_view taken = text_.substr(0, size);
    text_.remove_prefix(taken.size());
    return taken;
  }
  /// The text up to the character, which is consumed, or to the end.
  std::string_view upTo(char end) {
    const std::string_view taken = take(std::min(text_.find(end), text_.size()));
    byte();
    return taken;
  }
  std::string_view rest() { return take(text_.size()); }

 private:
  std::string_view text_;
};

/// Fails the run if the condition doesn't hold.
inline void require(bool holds) {
  if (!holds) __builtin_trap();
}

}  // namespace kelvora::fuzz
