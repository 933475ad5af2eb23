// Logins that wait until a bot has made room for a person, or until somebody who has gone is told to have left.

#include <algorithm>
#include <utility>

#include "base/wholeNumber.h"
#include "server/arena/arena.h"

namespace kelvora::server {

bool Arena::hasBots() const {
  return std::ranges::any_of(clients_, [](const auto& entry) { return isBot(entry.first) && entry.second.player; });
}

bool Arena::mustWait(ClientId client, std::string_view preferred, Millis now) {
  Client& self = clients_.at(client);
  if (self.loginSince == 0) self.loginSince = now;
  self.wantedColour = -1;
  if (isBot(client)) return !hasFreeColour();
  const bool isFull = playerCount() == colourCount;
  const auto wish = wholeNumber<std::int16_t>(preferred);
  for (const auto& [other, state] : clients_) {
    if (!state.player || !isBot(other)) continue;
    const bool isWish = wish == state.player->colour && now - self.loginSince < colourPatience;
    if (isWish || (isFull && self.wantedColour < 0)) self.wantedColour = state.player->colour;
    if (isWish) break;
  }
  const bool isLeaving = std::ranges::any_of(leavers_, [&](const Player& leaver) { return wish == leaver.colour; });
  return self.wantedColour >= 0 || !hasFreeColour() || (isLeaving && now - self.loginSince < colourPatience);
}

void Arena::retryLogins(Millis now) {
  std::vector<ClientId> waiting;
  for (const auto& [client, state] : clients_) {
    if (!state.login.empty()) waiting.push_back(client);
  }
  for (const ClientId client : waiting) {
    const std::string text = std::exchange(clients_.at(client).login, {});
    login(client, text, now);
  }
}

std::vector<std::int16_t> Arena::wantedColours() const {
  std::vector<std::int16_t> colours;
  for (const auto& [client, state] : clients_) {
    if (!state.login.empty() && state.wantedColour >= 0) colours.push_back(state.wantedColour);
  }
  return colours;
}

}  // namespace kelvora::server
