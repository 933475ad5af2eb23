#pragma once

#include <deque>
#include <map>
#include <vector>

#include "server/bots/botView.h"

namespace kelvora::server {

/// What the arena looked like lately, so that every bot can see it as late as its skill says.
class Sight {
 public:
  static constexpr Millis step = 40;  ///< between two pictures

  void add(std::vector<PlayerView> players, Millis now);
  void clear();

  /// Everybody as of the last picture.
  const std::vector<PlayerView>& players() const { return pictures_.front(); }
  /// The player of a connection as of the last picture; null if he is not in it.
  const PlayerView* player(ClientId client) const;
  /// How a bot sees the others. The spans in it live until the next `add`. Its own part is as of the last picture.
  BotView viewOf(const PlayerView& self, Millis delay, Millis now) const;

 private:
  const PlayerView* findNode(std::size_t picture, std::int16_t node) const;

  std::deque<std::vector<PlayerView>> pictures_;  // the newest first
  std::map<std::int16_t, Millis> charged_;        // when a node's tail was charged last
};

}  // namespace kelvora::server
