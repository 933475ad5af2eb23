#pragma once

#include <optional>
#include <string>

#include "base/outcome.h"
#include "server/arena/arena.h"
#include "server/moderation/host.h"
#include "server/moderation/networkLimit.h"
#include "server/moderation/vote.h"

namespace kelvora::server {

/// One vote at a time among the people of an arena, who are told how it goes.
class Ballot {
 public:
  static constexpr Millis startInterval = 60'000;  ///< minimum time between two votes that one network starts

  Ballot(const Arena& arena, const ModerationHost& host) : arena_(arena), host_(host) {}

  /// Starts a vote, with the starter's own one. Refusals are texts for the player.
  Outcome begin(const PlayerView& starter, Motion motion, Millis now);
  /// Adds a player's vote.
  Outcome agree(const PlayerView& voter);
  /// The motion that has passed since the last call, if any. Call this after each vote and several times a second.
  std::optional<Motion> passed(Millis now);

 private:
  struct Count {
    int votes;
    int needed;
  };
  Count count(Millis now) const;

  const Arena& arena_;
  const ModerationHost& host_;
  std::optional<Vote> vote_;
  int told_ = 0;  // votes
  NetworkLimit starts_{1, startInterval};
};

}  // namespace kelvora::server
