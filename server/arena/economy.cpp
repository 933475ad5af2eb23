#include "server/arena/economy.h"

#include <string>
#include <utility>

#include "protocol/frames.h"

namespace kelvora::server {

namespace {

std::string fundsOf(const Player& player) {
  return wire::toClient<wire::msgFunds>(player.node, player.inventory.funds());
}

}  // namespace

void Economy::trade(Player& player, bool isSale, std::string_view fields, Millis now) {
  const auto request =
      isSale ? wire::fromClient<wire::msgSellRequest>(fields) : wire::fromClient<wire::msgBuyRequest>(fields);
  if (!request || !roster_.allowsRequest(player.session, now)) return;
  const PowerupSlot item{std::get<0>(*request)};
  Inventory& inventory = player.inventory;
  const Outcome outcome = isSale ? inventory.sell(item) : inventory.buy(item);
  if (outcome.isRefused()) {
    return roster_.sendTo(player.client, isSale ? wire::toClient<wire::msgSellDenied>(outcome.reason())
                                                : wire::toClient<wire::msgBuyDenied>(outcome.reason()));
  }
  // This also tells the trader the new funds.
  const int stock = inventory.stock(item);
  const std::int64_t funds = inventory.funds();
  roster_.sendTo(player.client, isSale ? wire::toClient<wire::msgSellAccepted>(item, stock, funds)
                                       : wire::toClient<wire::msgBuyAccepted>(item, stock, funds));
  roster_.sendToOthers(player.client, fundsOf(player));
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

void Economy::sendFunds(const Player& player) const { roster_.sendToAll(fundsOf(player)); }

void Economy::sendFundsTo(ClientId client, const Player& player) const { roster_.sendTo(client, fundsOf(player)); }

}  // namespace kelvora::server
