#include "server/net/waitingRoom.h"

#include <algorithm>
#include <set>
#include <utility>

namespace kelvora::server {

std::size_t WaitingRoom::count(const std::string& network) const {
  return static_cast<std::size_t>(
      std::ranges::count_if(newcomers_, [&](const Newcomer& one) { return one.network == network; }));
}

bool WaitingRoom::add(Newcomer& newcomer) {
  if (newcomers_.size() >= maxWaiting || count(newcomer.network) >= maxPerNetwork) return false;
  newcomers_.push_back(std::move(newcomer));
  return true;
}

void WaitingRoom::letIn(std::chrono::steady_clock::time_point now, const std::function<bool(Newcomer&)>& enter,
                        const std::function<void(const std::string&)>& refuse) {
  std::set<std::string> refused;
  std::erase_if(newcomers_, [&](Newcomer& one) {
    if (!refused.contains(one.network)) {
      if (enter(one)) return true;
      refused.insert(one.network);
    }
    if (now - one.since < patience) return false;
    refuse(one.network);
    return true;
  });
}

}  // namespace kelvora::server
