#include "platform/windowing/framePacer.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <system_error>

namespace kelvora {

FramePacer::TimePoint FramePacer::passEnd(TimePoint now) {
  constexpr int framesToMakeUp = 3;
  TimePoint end = lastEnd_ ? *lastEnd_ + frame_ : now + frame_;
  if (now - end > framesToMakeUp * frame_) end = now;
  lastEnd_ = end;
  return end;
}

std::optional<std::chrono::milliseconds> frameFromText(std::string_view text) {
  unsigned milliseconds = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, milliseconds);
  if (error != std::errc{} || stop != end || milliseconds < 1 || milliseconds > 1000) return std::nullopt;
  return std::chrono::milliseconds(milliseconds);
}

std::optional<std::chrono::milliseconds> frameFromEnvironment() {
  const char* text = std::getenv("KELVORA_FRAME_MS");
  if (text == nullptr || *text == '\0' || std::string_view(text) == "0") return std::nullopt;
  const auto frame = frameFromText(text);
  if (!frame) {
    std::fprintf(stderr,
                 "kelvora: KELVORA_FRAME_MS must be a number from 0 to 1000, not \"%s\", so the game runs as fast as "
                 "it can\n",
                 text);
  }
  return frame;
}

}  // namespace kelvora
