#pragma once

#include <ctime>
#include <iosfwd>
#include <string>
#include <string_view>

#include "base/rateLimit.h"

namespace kelvora::server {

/// Lines for the operator. Strangers cannot fill a disk with them: beyond a burst of 200 lines, 20 a second are
/// written, and the rest are counted.
class Log {
 public:
  /// `withTime` puts the time in front of each line.
  Log(std::ostream& out, bool withTime) : out_(out), withTime_(withTime) {}

  /// Control characters and bytes above 126 become question marks. `wallClock` is what the line's time says.
  void write(std::string_view line, Millis now, std::time_t wallClock);

 private:
  void writeLine(std::string_view line, std::time_t wallClock);

  std::ostream& out_;
  const bool withTime_;
  RateLimit lines_{20, 200};
  int leftOut_ = 0;
};

/// Whether standard error goes to the journal, which notes the time of each line by itself.
bool isLoggingToJournal();

}  // namespace kelvora::server
