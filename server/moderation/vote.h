#pragma once

#include <optional>
#include <set>
#include <string>
#include <utility>

#include "base/millis.h"
#include "server/arena/clientId.h"

namespace kelvora::server {

/// The subject of a vote: to kick a player, or to restart the round if there is none.
struct Motion {
  std::optional<ClientId> kicked{};
  std::string name{};     ///< of the player to be kicked
  std::string network{};  ///< of that player, who may leave before the vote is over

  friend bool operator==(const Motion& a, const Motion& b) { return a.kicked == b.kicked; }
  /// "kick Ann" or "restart the round"
  std::string text() const { return kicked ? "kick " + name : "restart the round"; }
};

/// A vote. It needs more than half of the people present, and each network has one vote.
class Vote {
 public:
  static constexpr Millis timeLimit = 30'000;

  Vote(Motion motion, Millis now) : motion_(std::move(motion)), end_(now + timeLimit) {}

  const Motion& motion() const { return motion_; }
  /// False if the network has voted already.
  bool cast(const std::string& network) { return voters_.insert(network).second; }
  /// The votes of networks that still have people here.
  int votes(const std::set<std::string>& present) const;
  static int needed(int people) { return people / 2 + 1; }
  bool isOver(Millis now) const { return now >= end_; }

 private:
  Motion motion_;
  Millis end_;
  std::set<std::string> voters_;
};

}  // namespace kelvora::server
