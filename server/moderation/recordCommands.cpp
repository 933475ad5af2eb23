// The commands about records.

#include "server/arena/plainText.h"
#include "server/moderation/commandLine.h"
#include "server/moderation/moderation.h"

namespace kelvora::server {

namespace {

constexpr std::size_t maxPlayersShown = 5;
constexpr std::size_t maxClaimPassword = 64;  // bytes

std::string textOf(const Deeds& deeds) {
  const std::int64_t minutes = deeds.seconds / 60;
  return deeds.name + ": " + counted(deeds.captures, "capture") + " and " + counted(deeds.wins, "win") + " in " +
         counted(deeds.rounds, "round") + ", " + std::to_string(minutes / 60) + " h " + std::to_string(minutes % 60) +
         " min";
}

}  // namespace

Outcome Moderation::top(Call call) {
  const auto& table = records_.tables().always;
  if (table.empty()) return Outcome::refused("Nobody has a record yet.");
  for (std::size_t i = 0; i < table.size() && i < maxPlayersShown; ++i) {
    answer(call, std::to_string(i + 1) + ". " + textOf(table[i]));
  }
  return Outcome::done();
}

Outcome Moderation::stats(Call call) {
  const PlayerView* player = takePlayer(call.rest, call.players);
  const std::string name = player != nullptr ? player->name : std::string(call.rest);
  const bool isUnderWay =
      records_.find(name.empty() ? call.caller.name : name, [this, client = call.caller.client](const auto& deeds) {
        if (!deeds) return arena_.tell(client, "The records can't be read now.");
        arena_.tell(client, deeds->name.empty() ? "There is no record of that name." : textOf(*deeds));
      });
  return isUnderWay ? Outcome::done() : Outcome::refused(serverIsBusy);
}

Outcome Moderation::claim(Call call) {
  const std::string password(call.rest.substr(0, call.rest.find_last_not_of(' ') + 1));
  if (password.empty() || password.size() > maxClaimPassword) {
    return Outcome::refused("Type !claim and a password of up to " + std::to_string(maxClaimPassword) + " letters.");
  }
  if (!claims_.allows(host_.network(call.caller.client), call.now)) {
    return Outcome::refused("You can claim one name a minute.");
  }
  const bool isUnderWay =
      records_.claim(call.caller.name, password,
                     [this, client = call.caller.client](const std::string& text) { arena_.tell(client, text); });
  return isUnderWay ? Outcome::done() : Outcome::refused(serverIsBusy);
}

}  // namespace kelvora::server
