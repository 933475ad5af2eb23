// The arena's credits and powerups.

#include <utility>

#include "base/wholeNumber.h"
#include "network/wire/wireFormat.h"
#include "server/arena/arena.h"

namespace kelvora::server {

void Arena::buyOrSell(ClientId client, Player& player, bool isSale, const Fields& fields, Millis now) {
  const auto item = fields.size() == 1 ? wholeNumber<std::int16_t>(fields[0]) : std::nullopt;
  if (!item || !player.requests.allows(now)) return;
  Inventory& inventory = player.inventory;
  const Outcome outcome = isSale ? inventory.sell(*item) : inventory.buy(*item);
  if (outcome.isRefused()) {
    return sendTo(client, isSale ? wire::msgSellDenied : wire::msgBuyDenied, {outcome.reason()});
  }
  sendTo(client, isSale ? wire::msgSellAccepted : wire::msgBuyAccepted,
         {std::to_string(*item), std::to_string(inventory.stock(*item)), std::to_string(inventory.funds())});
  sendFunds(player, client);
}

void Arena::activate(ClientId client, Player& player, const Fields& fields, Millis now) {
  const auto item = fields.size() == 1 ? wholeNumber<std::int16_t>(fields[0]) : std::nullopt;
  if (!item || !player.requests.allows(now)) return;
  Inventory& inventory = player.inventory;
  const auto refuse = [&](const char* why) { sendTo(client, wire::msgServerText, {why}); };
  // Clients ask for little of this. But they show a capture only when it lands, and their own timers count changes of
  // the clock's second, and so end up to a second before these.
  if (!player.isAlive) return refuse("You are out, and cannot use abilities until you are respawned.");
  if (inventory.isRunning(*item, now)) return refuse("That ability isn't ready yet.");
  if (!inventory.start(*item, now)) return refuse("You have none of that ability left.");
  sendToAll(wire::msgPowerupOn, {std::to_string(player.node), std::to_string(*item)});
  if (*item == extendedTailSlot) {
    player.tail.prune(now);
    player.tail.extend(inventory.runsUntil(*item));
    pending_.extend(player.node, inventory.runsUntil(*item));
  }
  if (*item == pulseSlot) pulse(player, now);
}

void Arena::payIncome(Player& player, Millis now) {
  const Millis time = now - std::exchange(player.paidUntil, now);
  if (player.isAlive) credit(player, Entry::income, player.inventory.earned(rules_.incomePerMinute, time));
}

void Arena::credit(Player& player, Entry entry, std::int64_t amount) {
  if (amount == 0) return;
  player.inventory.book(entry, amount);
  sendFunds(player);
}

void Arena::sendFunds(const Player& player, std::optional<ClientId> trader) {
  for (const auto& [client, state] : clients_) {
    if (state.player && client != trader) sendTo(client, wire::msgFunds, fundsOf(player));
  }
}

std::vector<std::string> Arena::fundsOf(const Player& player) {
  return {std::to_string(player.node), std::to_string(player.inventory.funds())};
}

}  // namespace kelvora::server
