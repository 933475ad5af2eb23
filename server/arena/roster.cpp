#include "server/arena/roster.h"

#include <limits>
#include <utility>

#include "base/search.h"
#include "protocol/frames.h"
#include "server/arena/plainText.h"

namespace kelvora::server {

namespace {

Score scoreOf(const Player& player) {
  return {.client = player.client, .name = player.name, .captures = player.roundCaptures, .joined = player.joined};
}

}  // namespace

Player& Roster::join(Player player) {
  const ClientId client = player.client;
  return players_.insert_or_assign(client, std::move(player)).first->second;
}

void Roster::leave(ClientId client, const PendingCaptures& pending) {
  if (const auto spectator = spectators_.extract(client); !spectator.empty()) {
    return log(printable(spectator.mapped().name) + " stops watching");
  }
  auto entry = players_.extract(client);
  if (entry.empty()) return;
  Player& player = entry.mapped();
  log(printable(player.name) + " left");
  if (!pending.involves(player.node)) return sendLeft(player);
  // If a client hears of it too early, somebody else dies in the leaver's place, or the leaver's captures are
  // forgotten.
  player.isAlive = false;
  leavers_.push_back(std::move(player));
}

void Roster::releaseLeavers(const PendingCaptures& pending) {
  std::erase_if(leavers_, [&](const Player& player) {
    if (pending.involves(player.node)) return false;
    sendLeft(player);
    return true;
  });
}

Player* Roster::find(ClientId client) {
  const auto found = players_.find(client);
  return found == players_.end() ? nullptr : &found->second;
}

Player* Roster::findNode(std::int16_t node) {
  const auto found = findIf(players_, [&](const auto& entry) { return entry.second.node == node; });
  return found ? &found->second : nullptr;
}

bool Roster::hasPeople() const {
  return anyOf(players_, [](const auto& entry) { return !isBot(entry.first); });
}

bool Roster::hasBots() const {
  return anyOf(players_, [](const auto& entry) { return isBot(entry.first); });
}

bool Roster::isColourFree(PlayerColour colour) const {
  return !anyOf(players_, [&](const auto& entry) { return entry.second.colour == colour; }) &&
         !findBy(leavers_, &Player::colour, colour);
}

bool Roster::hasFreeColour() const { return players_.size() + leavers_.size() < std::size_t{colourCount}; }

std::int16_t Roster::nextNode() {
  // Clients take 0 for a departed player. And messages about one who left may still be in transit.
  do {
    lastNode_ = lastNode_ == std::numeric_limits<std::int16_t>::max() ? std::int16_t{1}
                                                                      : static_cast<std::int16_t>(lastNode_ + 1);
  } while (findNode(lastNode_) != nullptr || findBy(leavers_, &Player::node, lastNode_));
  return lastNode_;
}

void Roster::sendToOthers(ClientId exception, const std::string& frame) const {
  for (const auto& [client, player] : players_) {
    if (client != exception) output_.send(client, frame);
  }
  for (const auto& [client, spectator] : spectators_) output_.send(client, frame);
  if (isObserved_) output_.send(observerClient, frame);
}

void Roster::reportScore(const Player& player) const {
  if (!isBot(player.client)) output_.scored({scoreOf(player)}, false);
}

void Roster::reportScores(const Player* winner) const {
  std::vector<Score> scores;
  for (const auto& [client, player] : players_) {
    if (isBot(client)) continue;
    scores.push_back(scoreOf(player));
    scores.back().isWinner = &player == winner;
  }
  if (!scores.empty()) output_.scored(scores, true);
}

void Roster::tell(ClientId client, const std::string& text) const {
  sendTo(client, wire::toClient<wire::msgServerText>(text));
}

void Roster::tellAll(const std::string& text) const { sendToAll(wire::toClient<wire::msgServerText>(text)); }

void Roster::sendLeft(const Player& player) const { sendToAll(wire::toClient<wire::msgPlayerLeft>(player.node)); }

bool Roster::allows(RateLimit& limit, Drop what, Millis now) const {
  if (limit.allows(now)) return true;
  output_.dropped(what);
  return false;
}

}  // namespace kelvora::server
