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

void Arena::disconnected(ClientId client) {
  const auto found = clients_.find(client);
  if (found == clients_.end()) return;
  const std::optional<Player> player = std::move(found->second.player);
  clients_.erase(found);
  if (!player) return;
  output_.log(printable(player->name) + " left");
  sendToAll(wire::msgPlayerLeft, {std::to_string(player->node)});
}

void Arena::received(ClientId client, std::string_view text, Millis now) {
  const auto found = clients_.find(client);
  if (found == clients_.end() || text.empty()) return;
  const Fields fields = wire::splitFields(text.substr(1));
  const int id = static_cast<unsigned char>(text.front());
  if (!found->second.player) {
    if (id == wire::msgLogin) login(client, fields, now);
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
  for (auto it = clients_.begin(); it != clients_.end();) {
    const ClientId client = it->first;
    auto& [since, player] = it->second;
    if (!player && now - since >= loginTimeLimit) {
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

void Arena::login(ClientId client, const Fields& fields, Millis now) {
  if (const std::string reason = refusal(fields); !reason.empty()) {
    output_.log("client " + std::to_string(client) + " refused: " + reason);
    sendTo(client, wire::msgLoginDenied, {reason});
    output_.hangUp(client);
    clients_.erase(client);
    return;
  }
  Player player{.node = nextNode(),
                .colour = chooseColour(fields[2]),
                .name = trimBlanks(fields[0]),
                .x = randomCoordinate(),
                .y = randomCoordinate(),
                .paidUntil = now,
                .nextPing = now + firstPingDelay};
  output_.log(printable(player.name) + " joined as " + colourNames[player.colour] + ", node " +
              std::to_string(player.node));
  sendTo(client, wire::msgLoginAccepted,
         {std::to_string(player.colour), std::to_string(player.node), player.x, player.y});
  for (const auto& [other, state] : clients_) {
    if (!state.player) continue;
    sendJoined(client, *state.player);
    sendJoined(other, player);
  }
  sendFunds(client, player);
  clients_.at(client).player = std::move(player);
}

std::string Arena::refusal(const Fields& fields) const {
  if (fields.size() != 4) return "The login is not readable. A name or password must not contain special characters.";
  const std::string_view name = fields[0];
  if (fields[3] != version_) return "This server needs version " + version_ + " of the game.";
  if (!password_.empty() && fields[1] != password_) return "Wrong password.";
  if (trimBlanks(name).empty()) return "A name is needed.";
  if (name.size() > longestName) return "The name is longer than " + std::to_string(longestName) + " characters.";
  if (std::ranges::any_of(name, isControl)) return "The name contains control characters.";
  if (playerCount() == colourCount) return "The arena is full.";
  return {};
}

void Arena::position(Player& player, const Fields& fields, Millis now) {
  if (fields.size() != 2 || !isCoordinate(fields[0]) || !isCoordinate(fields[1])) return;
  if (!player.positions.allows(now)) return;
  player.x = fields[0];
  player.y = fields[1];
  // The sender gets the same text: his tail grows from the echo, and others must find its points by their coordinates.
  sendToAll(wire::msgPosition, {std::to_string(player.node), player.x, player.y});
}

void Arena::pingReply(ClientId client, Player& player, Millis now) {
  if (!player.pingSent) return;
  sendTo(client, wire::msgLatencyReport, {std::to_string(now - *std::exchange(player.pingSent, std::nullopt))});
}

void Arena::chat(ClientId client, Player& player, const Fields& fields, Millis now) {
  if (fields.size() != 2 || !player.requests.allows(now)) return;
  const auto target = wholeNumber<std::int16_t>(fields[0]);
  if (!target) return;
  std::string text(fields[1]);
  std::erase_if(text, isControl);
  const std::vector<std::string> line = {std::to_string(player.node), text};
  if (*target == -1) return sendToAll(wire::msgChat, line);
  const auto addressee = findNode(*target);
  if (addressee == clients_.end()) return sendTo(client, wire::msgServerText, {"That player is not here."});
  sendTo(addressee->first, wire::msgChat, line);
  if (addressee->first != client) sendTo(client, wire::msgChat, line);
}

void Arena::spawn(ClientId client, Player& player, Millis now) {
  if (!player.requests.allows(now)) return;
  if (player.alive) return sendTo(client, wire::msgSpawnDenied, {""});
  player.alive = true;
  sendToAll(wire::msgRespawn, {std::to_string(player.node)});
}

void Arena::setAlive(std::int16_t node, bool alive) {
  const auto found = findNode(node);
  if (found == clients_.end()) return;
  found->second.player->alive = alive;
  sendToAll(wire::msgAliveState, {std::to_string(node), alive ? "1" : "0"});
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

bool Arena::isColourFree(std::int16_t colour) const {
  return std::ranges::none_of(
      clients_, [&](const auto& entry) { return entry.second.player && entry.second.player->colour == colour; });
}

std::int16_t Arena::chooseColour(std::string_view preferred) const {
  const auto wish = wholeNumber<std::int16_t>(preferred);
  if (wish && *wish >= 0 && *wish < colourCount && isColourFree(*wish)) return *wish;
  std::int16_t colour = 0;
  while (!isColourFree(colour)) ++colour;
  return colour;
}

std::int16_t Arena::nextNode() {
  // Never 0, which clients take for a player who has gone; and not soon again, since messages about one who left may
  // still be on their way.
  do {
    lastNode_ = lastNode_ == std::numeric_limits<std::int16_t>::max() ? std::int16_t{1}
                                                                      : static_cast<std::int16_t>(lastNode_ + 1);
  } while (findNode(lastNode_) != clients_.end());
  return lastNode_;
}

std::string Arena::randomCoordinate() {
  return std::to_string(std::uniform_int_distribution(startInset, static_cast<int>(worldSize) - startInset)(random_));
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

void Arena::sendJoined(ClientId client, const Player& player) {
  sendTo(client, wire::msgPlayerJoined,
         {std::to_string(player.node), std::to_string(player.colour), player.name, player.x, player.y,
          player.alive ? "1" : "0", std::to_string(player.kills)});
}

}  // namespace kelvora::server
