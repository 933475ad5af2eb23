#pragma once

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "server/moderation/host.h"
#include "server/moderation/timeText.h"

namespace kelvora::server {

/// A host whose clock is set by hand. Work aside waits for `finishWork`.
class FakeHost : public ModerationHost {
 public:
  Seconds time = 1'000'000'000;  // 2001-09-09T01:46:40Z
  std::map<ClientId, std::string> networks;
  std::vector<std::string> lines;  // logged
  std::vector<std::string> acts;   // of moderators
  bool isBusy = false;

  std::string network(ClientId client) const override {
    const auto found = networks.find(client);
    return found == networks.end() ? "192.0.2." + std::to_string(client) : found->second;
  }
  void log(const std::string& line) override { lines.push_back(line); }
  void logAct(const std::string& line) override { acts.push_back(line); }
  Seconds wallClock() const override { return time; }
  bool runAside(std::function<void()> work, std::function<void()> finish) override {
    if (isBusy) return false;
    work_.emplace_back(std::move(work), std::move(finish));
    return true;
  }

  std::size_t pendingWork() const { return work_.size(); }
  /// Does the work, and the work that it leads to.
  void finishWork() {
    for (; !work_.empty(); work_.pop_front()) {
      work_.front().first();
      work_.front().second();
    }
  }
  /// Does the work, but concludes none, as at the end of the process.
  void doWork() {
    for (; !work_.empty(); work_.pop_front()) work_.front().first();
  }

 private:
  std::deque<std::pair<std::function<void()>, std::function<void()>>> work_;
};

}  // namespace kelvora::server
