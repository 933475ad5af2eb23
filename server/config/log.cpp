#include "server/config/log.h"

#include <array>
#include <ostream>
#include <string>
#include <utility>

namespace kelvora::server {

void Log::write(std::string_view line, Millis now, std::time_t wallClock) {
  if (!lines_.allows(now)) {
    ++leftOut_;
    return;
  }
  if (leftOut_ > 0) writeLine(std::to_string(std::exchange(leftOut_, 0)) + " lines dropped", wallClock);
  writeLine(line, wallClock);
}

void Log::writeLine(std::string_view line, std::time_t wallClock) {
  out_.clear();  // a full disk may have room again
  std::string text(line);
  // The arena cleans what clients send. Reasons and paths of the system may also have bytes that a terminal obeys.
  for (char& c : text) {
    if (c < ' ' || c > '~') c = '?';
  }
  if (withTime_) {
    std::array<char, 32> stamp{};
    const std::tm time = *std::gmtime(&wallClock);
    out_.write(stamp.data(),
               static_cast<std::streamsize>(std::strftime(stamp.data(), stamp.size(), "%Y-%m-%dT%H:%M:%SZ ", &time)));
  }
  out_ << text << std::endl;
}

}  // namespace kelvora::server
