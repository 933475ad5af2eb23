#pragma once

#include <array>
#include <cstdint>

#include "base/millis.h"
#include "base/outcome.h"
#include "protocol/powerupTable.h"

namespace kelvora::server {

/// What credits come from and go to.
enum class Entry { start, income, capture, survival, purchase, sale };
inline constexpr std::size_t entryCount = 6;

/// What one player owns: his credits, the powerups in stock, and those that run. Items are powerup slots; any number
/// may be passed for one.
class Inventory {
 public:
  std::int64_t funds() const { return funds_; }  ///< credits
  /// The only way in which funds change; `amount` is below 0 for what goes out.
  void book(Entry entry, std::int64_t amount);
  /// All that has been booked as that.
  std::int64_t booked(Entry entry) const { return ledger_[static_cast<std::size_t>(entry)]; }
  int stock(int item) const;
  int totalStock() const;

  /// What selling an item gives back: half its price, rounded down.
  static std::int64_t resaleValue(int item) { return powerupTable.at(static_cast<std::size_t>(item)).price / 2; }

  /// Refusals are in words for the player.
  Outcome buy(int item);
  Outcome sell(int item);

  /// Takes one out of the stock and starts it; false, and nothing changes, if there is none or it is running. The pulse
  /// is over as soon as it has started.
  bool start(int item, Millis now);
  /// Ends a running powerup before its time; false if it is not running.
  bool end(int item, Millis now);
  /// A powerup runs for the seconds of the table and then stops by itself.
  bool isRunning(int item, Millis now) const;

  /// The end of its running time; a time that has passed if it is not running.
  Millis runsUntil(int item) const { return isSlot(item) ? runsUntil_[static_cast<std::size_t>(item)] : 0; }

  /// The whole credits due for time spent alive; parts of one are kept for the next time.
  std::int64_t earned(int creditsPerMinute, Millis time);

 private:
  std::int64_t funds_ = static_cast<std::int64_t>(startFunds);
  std::array<std::int64_t, entryCount> ledger_{funds_};
  Millis earned_ = 0;  // sixty-thousandths of a credit
  std::array<int, powerupSlotCount> stock_{};
  std::array<Millis, powerupSlotCount> runsUntil_{};
};

}  // namespace kelvora::server
