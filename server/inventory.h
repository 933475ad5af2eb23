#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "server/rateLimit.h"
#include "store/powerupTable.h"

namespace kelvora::server {

/// What one player owns: his credits, the powerups in stock, and those that run. Items are powerup slots; any number
/// may be passed for one.
class Inventory {
 public:
  std::int64_t funds() const { return funds_; }  ///< credits
  int stock(int item) const;
  int totalStock() const;

  /// What selling an item gives back: half its price, rounded down.
  static std::int64_t resaleValue(int item) { return powerupTable.at(static_cast<std::size_t>(item)).price / 2; }

  /// Why an item cannot be bought, in words for the player; empty if it has been.
  std::string buy(int item);
  /// The same for a sale.
  std::string sell(int item);

  /// Takes one out of the stock and starts it; false, and nothing changes, if there is none or it is running. The pulse
  /// is over as soon as it has started.
  bool start(int item, Millis now);
  /// Ends a running powerup before its time; false if it is not running.
  bool end(int item, Millis now);
  /// A powerup runs for the seconds of the table and then stops by itself.
  bool isRunning(int item, Millis now) const;

  /// Credits for time spent alive. True if the funds have changed: they grow by whole credits, parts of one are kept.
  bool earn(int creditsPerMinute, Millis time);

 private:
  static bool isItem(int item) { return item >= 0 && item < powerupSlotCount; }

  std::int64_t funds_ = static_cast<std::int64_t>(startFunds);
  Millis earned_ = 0;  // sixty-thousandths of a credit
  std::array<int, powerupSlotCount> stock_{};
  std::array<Millis, powerupSlotCount> runsUntil_{};
};

}  // namespace kelvora::server
