#pragma once

#include <algorithm>

#include "base/millis.h"

namespace kelvora {

/// A token bucket: allows `burst` events at once, then `perSecond` on average. `now` must never decrease.
class RateLimit {
 public:
  RateLimit(double perSecond, double burst) : perSecond_(perSecond), burst_(burst), tokens_(burst) {}

  /// True if an event may happen now. Consumes a token if so.
  bool allows(Millis now) {
    tokens_ = std::min(burst_, tokens_ + static_cast<double>(now - last_) * perSecond_ / 1000);
    last_ = now;
    if (tokens_ < 1) return false;
    tokens_ -= 1;
    return true;
  }

 private:
  double perSecond_;
  double burst_;
  double tokens_;
  Millis last_ = 0;
};

}  // namespace kelvora
