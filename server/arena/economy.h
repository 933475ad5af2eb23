#pragma once

#include <cstdint>
#include <string_view>

#include "server/arena/roster.h"

namespace kelvora::server {

/// Credits and the store. Everybody is told everybody's funds.
class Economy {
 public:
  Economy(Roster& roster, int incomePerMinute) : roster_(roster), incomePerMinute_(incomePerMinute) {}

  /// Handles a player's request to buy or sell an item.
  void trade(Player& player, bool isSale, std::string_view fields, Millis now);
  /// Pays a player for the time spent alive since the last call.
  void payIncome(Player& player, Millis now);
  /// Adds credits and tells everybody the new funds. Does nothing if `amount` is 0.
  void credit(Player& player, Entry entry, std::int64_t amount);

  /// Tells everybody, or one client, a player's funds.
  void sendFunds(const Player& player) const;
  void sendFundsTo(ClientId client, const Player& player) const;

 private:
  Roster& roster_;
  const int incomePerMinute_;
};

}  // namespace kelvora::server
