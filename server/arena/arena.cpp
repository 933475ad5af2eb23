#include "server/arena/arena.h"

#include <algorithm>
#include <utility>

#include "network/wire/wireFormat.h"

namespace kelvora::server {

Arena::Arena(ArenaOutput& output, std::string version, std::string password, std::uint32_t seed,
             const ArenaRules& rules)
    : output_(output),
      version_(std::move(version)),
      password_(std::move(password)),
      rules_(rules),
      random_(seed),
      clock_(rules.roundMs, rules.intermissionMs) {}

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
  handle(client, *found->second.player, id, fields, now);
  endRoundIfWon();
}

void Arena::handle(ClientId client, Player& player, int id, const Fields& fields, Millis now) {
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
  pending_.prune(now);
  letLeaversGo();
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
    if (player) {
      payIncome(*player, now);
      player->tail.prune(now);
    }
    ++it;
  }
  strikeAll(now);
  endRoundIfWon();
  passTime(now);
  respawnWhoIsDue(now);
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
    view.isAlive = player.isAlive;
    view.position = player.spot.point();
    for (const Tail::Vertex& vertex : player.tail.vertices()) view.tail.push_back(vertex.spot.point());
    for (int item = 0; item < powerupSlotCount; ++item) {
      const auto slot = static_cast<std::size_t>(item);
      view.isRunning[slot] = player.inventory.isRunning(item, now);
      view.stock[slot] = player.inventory.stock(item);
    }
    view.funds = player.inventory.funds();
    view.kills = player.kills;
    view.roundCaptures = player.roundCaptures;
  }
  return views;
}

bool Arena::hasPeople() const {
  return std::ranges::any_of(clients_, [](const auto& entry) { return entry.second.player && !isBot(entry.first); });
}

std::vector<Player*> Arena::inGame() {
  std::vector<Player*> players;
  for (auto& [client, state] : clients_) {
    if (state.player) players.push_back(&*state.player);
  }
  return players;
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
