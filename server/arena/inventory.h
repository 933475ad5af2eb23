#pragma once

#include <array>
#include <cstdint>

#include "base/millis.h"
#include "base/outcome.h"
#include "protocol/powerupTable.h"

namespace kelvora::server {

/// The sources and uses of credits.
enum class Entry { start, income, capture, survival, purchase, sale };
inline constexpr std::size_t entryCount = 6;

/// A player's possessions: credits, powerups in stock and running powerups. Invalid numbers are safe to pass.
class Inventory {
 public:
  std::int64_t funds() const { return funds_; }  ///< credits
  /// Changes the funds; nothing else does. `amount` is negative for expenses.
  void book(Entry entry, std::int64_t amount);
  /// The total booked under this entry.
  std::int64_t booked(Entry entry) const { return ledger_[static_cast<std::size_t>(entry)]; }
  /// Powerups in stock, of one item or in total.
  int stock(PowerupSlot item) const;
  int totalStock() const;

  /// The credits paid for a sold item: half its price, rounded down.
  static std::int64_t resaleValue(PowerupSlot item) { return powerupTable.at(indexOf(item)).price / 2; }

  /// Refusals are texts for the player.
  Outcome buy(PowerupSlot item);
  Outcome sell(PowerupSlot item);

  /// Takes one from the stock and starts it. False, without any change, if there is none or it is running. The pulse is
  /// over as soon as it has started.
  [[nodiscard]] bool start(PowerupSlot item, Millis now);
  /// Ends a running powerup early. False if it isn't running.
  bool end(PowerupSlot item, Millis now);
  /// A powerup runs for its seconds in the table, then stops by itself.
  bool isRunning(PowerupSlot item, Millis now) const;

  /// When its running time ends; in the past if it isn't running.
  Millis runsUntil(PowerupSlot item) const { return isSlot(item) ? runsUntil_[indexOf(item)] : 0; }

  /// The whole credits earned by time spent alive. Fractions are kept for the next call.
  std::int64_t earned(int creditsPerMinute, Millis time);

 private:
  std::int64_t funds_ = static_cast<std::int64_t>(startFunds);
  std::array<std::int64_t, entryCount> ledger_{funds_};
  Millis earned_ = 0;  // in units of 1/60000 credit
  std::array<int, powerupSlotCount> stock_{};
  std::array<Millis, powerupSlotCount> runsUntil_{};
};

}  // namespace kelvora::server
