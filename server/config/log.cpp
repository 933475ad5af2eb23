#include "server/config/log.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <ostream>
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
  for (char& c : text) {
    if (c < ' ' || c > '~') c = '?';
  }
  if (withTime_) {
    std::tm time{};
    std::array<char, 32> stamp{};
    ::gmtime_r(&wallClock, &time);
    out_.write(stamp.data(),
               static_cast<std::streamsize>(std::strftime(stamp.data(), stamp.size(), "%Y-%m-%dT%H:%M:%SZ ", &time)));
  }
  out_ << text << std::endl;
}

bool isLoggingToJournal() {
  const char* stream = std::getenv("JOURNAL_STREAM");
  struct stat file {};
  if (stream == nullptr || ::fstat(STDERR_FILENO, &file) != 0) return false;
  return std::string(stream) == std::to_string(file.st_dev) + ":" + std::to_string(file.st_ino);
}

}  // namespace kelvora::server
