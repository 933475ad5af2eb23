// The arena's credits and powerups.

#include <utility>
#include "network/wire/wireFormat.h"

#include "server/arena.h"
#include "server/wholeNumber.h"

namespace kelvora::server {

void Arena::buyOrSell(ClientId client, Player& player, bool isSale, const Fields& fields, Millis now) {
  const auto item = fields.size() == 1 ? wholeNumber<std::int16_t>(fields[0]) : std::nullopt;
  if (!item || !player.requests.allows(now)) return;
  Inventory& inventory = player.inventory;
  const std::string refusal = isSale ? inventory.sell(*item) : inventory.buy(*item);
  if (!refusal.empty()) return sendTo(client, isSale ? wire::msgSellDenied : wire::msgBuyDenied, {refusal});
  sendTo(client, isSale ? wire::msgSellAccepted : wire::msgBuyAccepted,
         {std::to_string(*item), std::to_string(inventory.stock(*item)), std::to_string(inventory.funds())});
}

void Arena::activate(ClientId client, Player& player, const Fields& fields, Millis now) {
  const auto item = fields.size() == 1 ? wholeNumber<std::int16_t>(fields[0]) : std::nullopt;
  if (!item || !player.requests.allows(now)) return;
  // A client that is dead or has none left needs no answer. But his own timer counts changes of the clock's second, and
  // so ends up to a second before this one.
  if (player.inventory.isRunning(*item, now)) {
    return sendTo(client, wire::msgServerText, {"That ability isn't ready yet."});
  }
  if (!player.alive || !player.inventory.start(*item, now)) return;
  sendToAll(wire::msgPowerupOn, {std::to_string(player.node), std::to_string(*item)});
}

void Arena::endPowerup(std::int16_t node, int item, Millis now) {
  const auto found = findNode(node);
  if (found == clients_.end() || !found->second.player->inventory.end(item, now)) return;
  sendToAll(wire::msgPowerupOff, {std::to_string(node), std::to_string(item)});
}

void Arena::payIncome(ClientId client, Player& player, Millis now) {
  const Millis time = now - std::exchange(player.paidUntil, now);
  if (player.alive && player.inventory.earn(rules_.incomePerMinute, time)) sendFunds(client, player);
}

void Arena::sendFunds(ClientId client, const Player& player) {
  sendTo(client, wire::msgFunds, {std::to_string(player.node), std::to_string(player.inventory.funds())});
}

}  // namespace kelvora::server
