#include "server/arena/inventory.h"

#include <numeric>
#include <string>

namespace kelvora::server {

namespace {

constexpr Millis second = 1'000;
constexpr Millis minute = 60'000;

std::string credits(std::int64_t amount) { return std::to_string(amount) + (amount == 1 ? " credit" : " credits"); }

}  // namespace

int Inventory::stock(PowerupSlot item) const { return isSlot(item) ? stock_[indexOf(item)] : 0; }

int Inventory::totalStock() const { return std::accumulate(stock_.begin(), stock_.end(), 0); }

Outcome Inventory::buy(PowerupSlot item) {
  if (!isSlot(item)) return Outcome::refused("The store has no such powerup.");
  const Powerup& powerup = powerupTable[indexOf(item)];
  if (totalStock() >= startCapacity) {
    return Outcome::refused("You cannot carry more than " + std::to_string(startCapacity) +
                            " powerups. Use or sell one first.");
  }
  if (funds_ < powerup.price) {
    return Outcome::refused(std::string(powerup.name) + " costs " + credits(powerup.price) + ". You have " +
                            credits(funds_) + ".");
  }
  book(Entry::purchase, -powerup.price);
  ++stock_[indexOf(item)];
  return Outcome::done();
}

Outcome Inventory::sell(PowerupSlot item) {
  if (!isSlot(item)) return Outcome::refused("The store has no such powerup.");
  if (stock_[indexOf(item)] == 0) {
    return Outcome::refused(std::string("You have nothing to sell of this kind: ") + powerupTable[indexOf(item)].name +
                            ".");
  }
  --stock_[indexOf(item)];
  book(Entry::sale, resaleValue(item));
  return Outcome::done();
}

bool Inventory::start(PowerupSlot item, Millis now) {
  if (stock(item) == 0 || isRunning(item, now)) return false;
  --stock_[indexOf(item)];
  runsUntil_[indexOf(item)] = now + powerupTable[indexOf(item)].seconds * second;
  return true;
}

bool Inventory::end(PowerupSlot item, Millis now) {
  if (!isRunning(item, now)) return false;
  runsUntil_[indexOf(item)] = now;
  return true;
}

bool Inventory::isRunning(PowerupSlot item, Millis now) const {
  return isSlot(item) && now < runsUntil_[indexOf(item)];
}

std::int64_t Inventory::earned(int creditsPerMinute, Millis time) {
  earned_ += creditsPerMinute * time;
  const Millis whole = earned_ / minute;
  earned_ %= minute;
  return whole;
}

void Inventory::book(Entry entry, std::int64_t amount) {
  ledger_[static_cast<std::size_t>(entry)] += amount;
  funds_ += amount;
}

}  // namespace kelvora::server
