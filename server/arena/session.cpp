// Who comes and who goes.

#include <algorithm>
#include <limits>
#include <utility>

#include "base/text.h"
#include "base/wholeNumber.h"
#include "network/wire/wireFormat.h"
#include "server/arena/arena.h"
#include "server/arena/plainText.h"

namespace kelvora::server {

namespace {

constexpr int startInset = 10'000;  // world units from every edge
constexpr const char* colourNames[Arena::colourCount] = {"Red", "Yellow", "Green", "Cyan", "Blue", "Purple"};

}  // namespace

void Arena::login(ClientId client, std::string_view text, Millis now) {
  const Fields fields = wire::splitFields(text.substr(1));
  if (const Outcome outcome = check(client, fields); outcome.isRefused()) {
    output_.log("client " + std::to_string(client) + " refused: " + outcome.reason());
    sendTo(client, wire::msgLoginDenied, {outcome.reason()});
    output_.hangUp(client);
    clients_.erase(client);
    return;
  }
  if (mustWait(client, fields[2], now)) {
    clients_.at(client).login = text;
    return;
  }
  // Nobody is there to finish the round of those who have gone.
  if (playerCount() == 0) clock_.beginAnew();
  Player player{.node = nextNode(),
                .colour = chooseColour(fields[2]),
                .name = trimBlanks(fields[0]),
                .spot = startSpot(),
                .paidUntil = now,
                .nextPing = now + firstPingDelay,
                .lastReport = now};
  output_.log(printable(player.name) + " joined as " + colourNames[player.colour] + ", node " +
              std::to_string(player.node));
  player.isAlive = clock_.isRunning();
  if (!isBot(client) && !hasPeople()) clockSet_ = now;
  sendTo(client, wire::msgLoginAccepted,
         {std::to_string(player.colour), std::to_string(player.node), player.spot.x, player.spot.y});
  for (const Player& leaver : leavers_) sendJoined(client, leaver);
  for (const auto& [other, state] : clients_) {
    if (!state.player) continue;
    sendJoined(client, *state.player);
    sendTo(client, wire::msgFunds, fundsOf(*state.player));
    sendJoined(other, player);
  }
  if (!player.isAlive) {
    // The login has made him alive, and there is no other message that opens the store of a dead player.
    sendTo(client, wire::msgRoundOver, {"The next round begins in " + secondsText(clock_.left()) + "."});
    sendDead(client, player);
  }
  const Player& joined = clients_.at(client).player.emplace(std::move(player));
  sendFunds(joined);
}

Outcome Arena::check(ClientId client, const Fields& fields) const {
  // The euro sign and the low quotation mark have the numbers of delimiters.
  if (fields.size() != 4 ||
      std::ranges::any_of(fields, [](std::string_view field) { return field.find(wire::frameStart) != field.npos; })) {
    return Outcome::refused(
        "The login is not readable. Neither name nor password may contain a euro sign or a low quotation mark.");
  }
  const std::string_view name = fields[0];
  if (fields[3] != version_) return Outcome::refused("This server needs version " + version_ + " of the game.");
  if (!password_.empty() && fields[1] != password_) return Outcome::refused("Wrong password.");
  if (trimBlanks(name).empty()) return Outcome::refused("A name is needed.");
  if (name.size() > longestName)
    return Outcome::refused("The name is longer than " + std::to_string(longestName) + " characters.");
  if (std::ranges::any_of(name, isControl)) return Outcome::refused("The name contains control characters.");
  if (playerCount() == colourCount && (isBot(client) || !hasBots())) return Outcome::refused("The arena is full.");
  return Outcome::done();
}

void Arena::disconnected(ClientId client) {
  const auto found = clients_.find(client);
  if (found == clients_.end()) return;
  std::optional<Player> player = std::move(found->second.player);
  clients_.erase(found);
  if (!player) return;
  output_.log(printable(player->name) + " left");
  letGo(std::move(*player));
}

bool Arena::isColourFree(std::int16_t colour) const {
  return std::ranges::none_of(
             clients_,
             [&](const auto& entry) { return entry.second.player && entry.second.player->colour == colour; }) &&
         std::ranges::find(leavers_, colour, &Player::colour) == leavers_.end();
}

bool Arena::hasFreeColour() const { return playerCount() + leavers_.size() < static_cast<std::size_t>(colourCount); }

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
  } while (findNode(lastNode_) != clients_.end() ||
           std::ranges::find(leavers_, lastNode_, &Player::node) != leavers_.end());
  return lastNode_;
}

Spot Arena::startSpot() {
  std::uniform_int_distribution coordinate(startInset, static_cast<int>(worldSize) - startInset);
  const int x = coordinate(random_);
  const int y = coordinate(random_);
  return spotOf(std::to_string(x), std::to_string(y), {static_cast<float>(x), static_cast<float>(y)});
}

void Arena::sendJoined(ClientId client, const Player& player) {
  sendTo(client, wire::msgPlayerJoined,
         {std::to_string(player.node), std::to_string(player.colour), player.name, player.spot.x, player.spot.y,
          player.isAlive ? "1" : "0", std::to_string(player.kills)});
}

}  // namespace kelvora::server
