#pragma once

#include <map>
#include <string>

#include "base/rateLimit.h"

namespace kelvora::server {

/// A rate limit for each network. Forgets networks whose limit is full again.
class NetworkLimit {
 public:
  static constexpr std::size_t maxNetworks = 4096;  ///< beyond that, newcomers get no event until others are forgotten

  /// `burst` events at once, then one in `interval` ms on average.
  NetworkLimit(double burst, Millis interval) : burst_(burst), interval_(interval) {}

  bool allows(const std::string& network, Millis now) {
    if (networks_.size() >= maxNetworks && !networks_.contains(network)) {
      const auto fullAfter = static_cast<Millis>(burst_) * interval_;
      std::erase_if(networks_, [&](const auto& entry) { return now - entry.second.last >= fullAfter; });
      if (networks_.size() >= maxNetworks) return false;
    }
    const auto [entry, isNew] =
        networks_.try_emplace(network, Entry{RateLimit(1'000.0 / static_cast<double>(interval_), burst_)});
    entry->second.last = now;
    return entry->second.limit.allows(now);
  }

 private:
  struct Entry {
    RateLimit limit;
    Millis last = 0;
  };

  double burst_;
  Millis interval_;
  std::map<std::string, Entry> networks_;
};

}  // namespace kelvora::server
