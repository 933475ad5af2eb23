#include "server/arena/arena.h"

#include <utility>

#include "protocol/messages.h"
#include "server/arena/chat.h"
#include "server/arena/pings.h"

namespace kelvora::server {

Arena::Arena(ArenaOutput& output, std::string version, std::string password, std::uint32_t seed,
             const ArenaRules& rules)
    : output_(output),
      roster_(output),
      gallery_(roster_, rules.spectators),
      economy_(roster_, rules.incomePerMinute),
      rounds_(roster_, economy_, rules),
      lives_(roster_, pending_, economy_, rounds_, rules),
      combat_(roster_, pending_, lives_),
      movement_(roster_, pending_, lives_, combat_, rules.speedFactor),
      coach_(roster_, rounds_, rules),
      lobby_(output, roster_, gallery_, economy_, rounds_, combat_, std::move(version), std::move(password), seed) {}

void Arena::received(ClientId client, std::string_view text, Millis now) {
  const auto message = wire::splitId(text);
  if (!message) return;
  if (Player* player = roster_.find(client)) {
    handle(*player, *message, now);
    rounds_.endIfWon();
  } else if (const auto found = roster_.spectators().find(client); found != roster_.spectators().end()) {
    gallery_.received(found->second, *message, now);
  } else if (message->id == wire::msgLogin) {
    lobby_.login(client, message->fields, now);
  }
}

void Arena::handle(Player& player, const wire::Incoming& message, Millis now) {
  const std::string_view fields = message.fields;
  switch (message.id) {
    case wire::msgPositionReport:
      return movement_.report(player, fields, now);
    case wire::msgPingReply:
      return reportLatency(roster_, player.client, player.session, now);
    case wire::msgChat:
      return relayChat(roster_, player, fields, now);
    case wire::msgSpawnRequest:
      return lives_.requestSpawn(player, now);
    case wire::msgBuyRequest:
    case wire::msgSellRequest:
      return economy_.trade(player, message.id == wire::msgSellRequest, fields, now);
    case wire::msgActivateRequest:
      return combat_.activate(player, fields, now);
    default:
      return;
  }
}

void Arena::disconnected(ClientId client) {
  lobby_.leave(client);
  const Player* leaver = roster_.find(client);
  if (leaver != nullptr && rounds_.isRunning()) roster_.reportScore(*leaver);
  roster_.leave(client, pending_);
}

void Arena::observe(bool isObserved, Millis now) {
  roster_.setObserved(isObserved);
  if (!isObserved) return;
  lobby_.showPlayers(observerClient);
  combat_.tellRunning(observerClient, now);
}

void Arena::expel(ClientId client, const std::string& reason) {
  roster_.tell(client, reason);
  output_.hangUp(client);
  disconnected(client);
}

void Arena::tick(Millis now) {
  pending_.prune(now);
  roster_.releaseLeavers(pending_);
  lobby_.tick(now);
  for (auto& [client, player] : roster_.players()) {
    pingIfDue(roster_, client, player.session, now);
    economy_.payIncome(player, now);
    player.tail.prune(now);
  }
  combat_.strikeAll(now);
  rounds_.endIfWon();
  rounds_.passTime(now);
  lives_.respawnDue(now);
  combat_.tellEnded(now);
  gallery_.tick(now);
  coach_.tick(now);
}

std::vector<PlayerView> Arena::players(Millis now) const {
  std::vector<PlayerView> views;
  for (const auto& [client, player] : roster_.players()) views.push_back(viewOf(player, now));
  return views;
}

}  // namespace kelvora::server
