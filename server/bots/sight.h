#pragma once

#include <deque>
#include <map>
#include <vector>

#include "protocol/rules.h"
#include "server/bots/botView.h"

namespace kelvora::server {

/// Recent snapshots of the arena, so that each bot can see it with its skill's delay.
class Sight {
 public:
  static constexpr Millis step = rules::reportInterval;  ///< between two snapshots

  /// Adds a snapshot. Call this every `step`.
  void add(std::vector<PlayerView> players, Millis now);
  void clear();

  /// All players in the latest snapshot. Needs at least one snapshot.
  const std::vector<PlayerView>& players() const { return pictures_.front(); }
  /// A connection's player in the latest snapshot; null if not in it.
  const PlayerView* player(ClientId client) const;
  /// A bot's view: the others with a delay, itself from the latest snapshot. Its spans are valid until the next `add`.
  BotView viewOf(const PlayerView& self, Millis delay, Millis now) const;

 private:
  const PlayerView* findNode(std::size_t picture, std::int16_t node) const;

  std::deque<std::vector<PlayerView>> pictures_;  // newest first
  std::map<std::int16_t, Millis> charged_;        // by node: when the tail was last charged
};

}  // namespace kelvora::server
