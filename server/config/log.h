#pragma once

#include <ctime>
#include <iosfwd>
#include <string_view>

#include "base/rateLimit.h"

namespace kelvora::server {

/// Writes lines for the operator. After a burst of 200 lines it writes 20 a second and counts the rest, so that
/// strangers can't fill the disk. Moderators' acts aren't limited, since few people can be moderators.
class Log {
 public:
  /// `withTime` prefixes each line with the time.
  Log(std::ostream& out, bool withTime) : out_(out), withTime_(withTime) {}

  /// Control characters and bytes above 126 become question marks. `wallClock` is the time to print.
  void write(std::string_view line, Millis now, std::time_t wallClock);
  /// The same for a line that must not be dropped.
  void writeAlways(std::string_view line, std::time_t wallClock) { writeLine(line, wallClock); }

 private:
  void writeLine(std::string_view line, std::time_t wallClock);

  std::ostream& out_;
  const bool withTime_;
  RateLimit lines_{20, 200};
  int leftOut_ = 0;
};

}  // namespace kelvora::server
