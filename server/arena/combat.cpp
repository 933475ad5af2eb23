#include "server/arena/combat.h"

#include "protocol/frames.h"

namespace kelvora::server {

void Combat::activate(Player& player, std::string_view fields, Millis now) {
  const auto request = wire::fromClient<wire::msgActivateRequest>(fields);
  if (!request || !roster_.allowsRequest(player.session, now)) return;
  const PowerupSlot item{std::get<0>(*request)};
  Inventory& inventory = player.inventory;
  const auto refuse = [&](const char* why) { roster_.tell(player.client, why); };
  // A client's request is rarely refused. But it shows a capture only when it carries it out, and its timers count
  // changes of the clock's second, so they end up to a second before these.
  if (!player.isAlive) return refuse("You are out, and cannot use abilities until you are respawned.");
  if (inventory.isRunning(item, now)) return refuse("That ability isn't ready yet.");
  if (!inventory.start(item, now)) return refuse("You have none of that ability left.");
  roster_.sendToAll(wire::toClient<wire::msgPowerupOn>(player.node, item));
  if (item == extendedTailSlot) {
    player.tail.prune(now);
    player.tail.extend(inventory.runsUntil(item));
    pending_.extend(player.node, inventory.runsUntil(item));
  }
  if (item == pulseSlot) pulse(player, now);
}

void Combat::strikeOnTheWay(Player& mover, Point from, Millis now) {
  strike(hitsOnTheWay(roster_.players(), mover, from, now), now);
}

void Combat::strikeAll(Millis now) { strike(hitsNow(roster_.players(), now), now); }

void Combat::tellRunning(ClientId newcomer, Millis now) {
  for (const auto& [client, player] : roster_.players()) {
    for (const PowerupSlot item : powerupSlots) {
      if (!player.inventory.isRunning(item, now)) continue;
      roster_.sendTo(newcomer, wire::toClient<wire::msgPowerupOn>(player.node, item));
      shownLate_.push_back({newcomer, client, item, player.inventory.runsUntil(item)});
    }
  }
}

void Combat::tellEnded(Millis now) {
  std::erase_if(shownLate_, [&](const Shown& shown) {
    const Player* owner = roster_.find(shown.owner);
    // An early end, or another start, has been told to everybody.
    if (owner == nullptr || !roster_.hears(shown.newcomer)) return true;
    if (owner->inventory.runsUntil(shown.item) != shown.until) return true;
    if (now < shown.until) return false;
    roster_.sendTo(shown.newcomer, wire::toClient<wire::msgPowerupOff>(owner->node, shown.item));
    return true;
  });
}

void Combat::strike(const std::vector<Hit>& hits, Millis now) {
  // All at once: two players may kill each other, but nobody dies twice.
  for (const auto& [winner, loser] : hits) {
    if (loser->isAlive) lives_.kill(*winner, *loser, std::nullopt, now);
  }
}

void Combat::pulse(Player& owner, Millis now) {
  // The owner comes last and so is alive while the others die.
  for (Player* player : playersInPulse(roster_.players(), owner)) {
    if (isVulnerable(*player, now)) {
      lives_.kill(owner, *player, std::nullopt, now);
    } else {
      end(*player, shieldSlot, now);
    }
  }
}

void Combat::end(Player& player, PowerupSlot item, Millis now) {
  if (!player.inventory.end(item, now)) return;
  roster_.sendToAll(wire::toClient<wire::msgPowerupOff>(player.node, item));
}

}  // namespace kelvora::server
