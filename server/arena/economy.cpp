#include "server/arena/economy.h"

#include <utility>

#include "base/wholeNumber.h"
#include "protocol/wireFormat.h"

namespace kelvora::server {

void Economy::trade(Player& player, bool isSale, const RequestFields& fields, Millis now) {
  const auto item = fields.size() == 1 ? wholeNumber<std::int16_t>(fields[0]) : std::nullopt;
  if (!item || !player.requests.allows(now)) return;
  Inventory& inventory = player.inventory;
  const Outcome outcome = isSale ? inventory.sell(*item) : inventory.buy(*item);
  if (outcome.isRefused()) {
    return roster_.sendTo(player.client, isSale ? wire::msgSellDenied : wire::msgBuyDenied, {outcome.reason()});
  }
  // This also tells the trader the new funds.
  roster_.sendTo(player.client, isSale ? wire::msgSellAccepted : wire::msgBuyAccepted,
                 {std::to_string(*item), std::to_string(inventory.stock(*item)), std::to_string(inventory.funds())});
  for (const auto& [client, other] : roster_.players()) {
    if (client != player.client) sendFundsTo(client, player);
  }
}

void Economy::payIncome(Player& player, Millis now) {
  const Millis time = now - std::exchange(player.paidUntil, now);
  if (player.isAlive) credit(player, Entry::income, player.inventory.earned(incomePerMinute_, time));
}

void Economy::credit(Player& player, Entry entry, std::int64_t amount) {
  if (amount == 0) return;
  player.inventory.book(entry, amount);
  sendFunds(player);
}

void Economy::sendFunds(const Player& player) const {
  for (const auto& [client, other] : roster_.players()) sendFundsTo(client, player);
}

void Economy::sendFundsTo(ClientId client, const Player& player) const {
  roster_.sendTo(client, wire::msgFunds, {std::to_string(player.node), std::to_string(player.inventory.funds())});
}

}  // namespace kelvora::server
