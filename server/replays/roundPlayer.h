#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "server/replays/roundFile.h"

namespace kelvora::server {

/// Plays a recorded round to spectators: from its beginning once somebody watches, and again and again while somebody
/// does.
class RoundPlayer {
 public:
  static constexpr Millis pause = 10'000;                         ///< before it begins again
  static constexpr Millis maxStep = 1'000;                        ///< of the round's time from one tick to the next
  static constexpr std::size_t maxBurst = std::size_t{32} << 10;  ///< bytes of one tick

  using Send = std::function<void(const std::string& frame)>;

  /// `round` comes from `readRound`.
  explicit RoundPlayer(Moments round);
  RoundPlayer(const RoundPlayer&) = delete;
  RoundPlayer& operator=(const RoundPlayer&) = delete;

  /// Sends all spectators what is due. Call this several times a second.
  void tick(Millis now, bool isWatched, const Send& toAll);
  /// Shows a newcomer the players as they are now.
  void show(const Send& toNewcomer) const;

 private:
  /// A player as newcomers get to know them.
  struct Seen {
    std::int16_t colour = 0;
    std::string name;
    std::string x;
    std::string y;
    bool isAlive = false;
    std::int16_t kills = 0;
    double funds = 0;
  };

  void rewind();
  void note(std::string_view frame);

  const Moments round_;
  Moments::Reader reader_;
  std::optional<Moment> next_;
  std::map<std::int16_t, Seen> players_;  // by node
  bool isOn_ = false;
  Millis begun_ = 0;
  Millis last_ = 0;                // tick
  std::optional<Millis> againAt_;  // set once it is over
};

}  // namespace kelvora::server
