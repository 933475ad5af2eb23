#include "server/arena.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "base/text.h"
#include "network/wire/wireFormat.h"
#include "server/wholeNumber.h"

namespace kelvora::server {

namespace {

constexpr double worldSize = 100'000;
constexpr int startInset = 10'000;  // world units from every edge
constexpr const char* colourNames[Arena::colourCount] = {"Red", "Yellow", "Green", "Cyan", "Blue", "Purple"};

bool isControl(char c) {
  const auto code = static_cast<unsigned char>(c);
  return code < 32 || code == 127;
}

bool isCoordinate(std::string_view text) {
  const auto value = wholeNumber<double>(text);
  return value && *value >= 0 && *value <= worldSize;
}

std::string printable(std::string_view text) {
  std::string line(text);
  for (char& c : line) {
    if (isControl(c) || static_cast<unsigned char>(c) > 127) c = '?';
  }
  return line;
}

}  // namespace

Arena::Arena(ArenaOutput& output, std::string version, std::string password, std::uint32_t seed,
             const ArenaRules& rules)
    : output_(output), version_(std::move(version)), password_(std::move(password)), rules_(rules), random_(seed) {}

void Arena::connected(ClientId client, Millis now) { clients_.insert({client, Client{now, std::nullopt}}); }

void Arena::received(ClientId client, std::string_view text, Millis now) {
  const auto found = clients_.find(client);
  if (found == clients_.end() || text.empty()) return;
  const Fields fields = wire::splitFields(text.substr(1));
  const int id = static_cast<unsigned char>(text.front());
  if (!found->second.player) {
    if (id == wire::msgLogin && found->second.login.empty()) login(client, text, now);
    return;
  }
  Player& player = *found->second.player;
  switch (id) {
    case wire::msgPositionReport:
      return position(player, fields, now);
    case wire::msgPingReply:
      return pingReply(client, player, now);
    case wire::msgChat:
      return chat(client, player, fields, now);
    case wire::msgSpawnRequest:
      return spawn(client, player, now);
    case wire::msgBuyRequest:
    case wire::msgSellRequest:
      return buyOrSell(client, player, id == wire::msgSellRequest, fields, now);
    case wire::msgActivateRequest:
      return activate(client, player, fields, now);
    default:
      return;
  }
}

void Arena::tick(Millis now) {
  retryLogins(now);
  for (auto it = clients_.begin(); it != clients_.end();) {
    const ClientId client = it->first;
    std::optional<Player>& player = it->second.player;
    if (!player && now - it->second.since >= loginTimeLimit) {
      if (!it->second.login.empty()) sendTo(client, wire::msgLoginDenied, {"The arena is full."});
      output_.log("client " + std::to_string(client) + " did not log in in time");
      output_.hangUp(client);
      it = clients_.erase(it);
      continue;
    }
    if (player && now >= player->nextPing) {
      player->nextPing = now + pingInterval;
      player->pingSent = now;
      sendTo(client, wire::msgPing, {std::to_string(now / 1000)});
    }
    if (player) payIncome(client, *player, now);
    ++it;
  }
}

std::size_t Arena::playerCount() const {
  return static_cast<std::size_t>(
      std::ranges::count_if(clients_, [](const auto& entry) { return entry.second.player.has_value(); }));
}

std::vector<PlayerView> Arena::players(Millis now) const {
  std::vector<PlayerView> views;
  for (const auto& [client, state] : clients_) {
    if (!state.player) continue;
    const Player& player = *state.player;
    PlayerView& view = views.emplace_back();
    view.client = client;
    view.node = player.node;
    view.colour = player.colour;
    view.name = player.name;
    view.isAlive = player.alive;
    view.position = {wholeNumber<double>(player.x).value_or(0), wholeNumber<double>(player.y).value_or(0)};
    for (int item = 0; item < powerupSlotCount; ++item) {
      const auto slot = static_cast<std::size_t>(item);
      view.isRunning[slot] = player.inventory.isRunning(item, now);
      view.stock[slot] = player.inventory.stock(item);
    }
    view.funds = player.inventory.funds();
    view.kills = player.kills;
  }
  return views;
}

std::map<ClientId, Arena::Client>::iterator Arena::findNode(std::int16_t node) {
  return std::ranges::find_if(
      clients_, [&](const auto& entry) { return entry.second.player && entry.second.player->node == node; });
}

void Arena::sendToAll(std::int16_t id, const std::vector<std::string>& fields) {
  const std::string frame = wire::buildFrame(id, fields);
  for (const auto& [client, state] : clients_) {
    if (state.player) output_.send(client, frame);
  }
}

void Arena::sendTo(ClientId client, std::int16_t id, const std::vector<std::string>& fields) {
  output_.send(client, wire::buildFrame(id, fields));
}

}  // namespace kelvora::server
