#include "server/arena/lobby.h"

#include <utility>

#include "base/numberFromText.h"
#include "base/search.h"
#include "protocol/frames.h"
#include "protocol/rules.h"
#include "server/arena/names.h"
#include "server/arena/plainText.h"

namespace kelvora::server {

namespace {

// The euro sign and the low quotation mark have the numbers of delimiters.
constexpr const char* unreadable =
    "The login is not readable. Neither name nor password may contain a euro sign or a low quotation mark.";
constexpr int startInset = 10'000;  // world units from every edge

std::string joinedFrame(const Player& player) {
  return wire::toClient<wire::msgPlayerJoined>(player.node, player.colour, player.name, wire::NumberText{player.spot.x},
                                               wire::NumberText{player.spot.y}, player.isAlive, player.kills);
}

}  // namespace

Lobby::Lobby(ArenaOutput& output, Roster& roster, const Gallery& gallery, Economy& economy, Rounds& rounds,
             Combat& combat, std::string version, std::string password, std::uint32_t seed)
    : output_(output),
      roster_(roster),
      gallery_(gallery),
      economy_(economy),
      rounds_(rounds),
      combat_(combat),
      version_(std::move(version)),
      password_(std::move(password)),
      random_(seed) {}

void Lobby::login(ClientId client, std::string_view text, Millis now) {
  const auto visitor = visitors_.find(client);
  if (visitor == visitors_.end() || visitor->second.login) return;
  const Role role = visitor->second.role;
  const auto request = read(text);
  Outcome outcome = request ? check(client, role, *request) : Outcome::refused(unreadable);
  NameVerdict verdict;
  if (!outcome.isRefused()) {
    verdict = roster_.nameVerdict(client, visibleName(request->name), namePassword(request->password).value_or(""));
    outcome = std::move(verdict.outcome);
  }
  visitor->second.awaitsVerdict = verdict.isPending;
  if (outcome.isRefused()) {
    output_.log("client " + std::to_string(client) + " was refused: " + outcome.reason());
    roster_.sendTo(client, wire::toClient<wire::msgLoginDenied>(outcome.reason()));
    output_.hangUp(client);
    visitors_.erase(visitor);
  } else if (visitor->second.awaitsVerdict ||
             (role == Role::player && mustWait(client, visitor->second, request->colour, now))) {
    visitor->second.login = text;
  } else {
    visitors_.erase(visitor);
    const auto enter = role == Role::spectator ? &Lobby::admitSpectator : &Lobby::admit;
    (this->*enter)(client, *request, std::move(verdict.claimed), now);
  }
}

std::optional<Lobby::Request> Lobby::read(std::string_view text) {
  const auto fields = wire::readTexts<wire::Direction::toServer, wire::msgLogin>(text);
  if (!fields || text.find(wire::frameStart) != text.npos) return std::nullopt;
  const auto& [name, password, colour, version] = *fields;
  return Request{name, password, colour, version};
}

Outcome Lobby::check(ClientId client, Role role, const Request& request) const {
  if (Outcome outcome = roster_.mayEnter(client); outcome.isRefused()) return outcome;
  if (request.version != version_) return Outcome::refused("This server needs version " + version_ + " of the game.");
  if (!namePassword(request.password)) return Outcome::refused("Wrong password.");
  if (Outcome outcome = checkName(request.name); outcome.isRefused()) return outcome;
  if (role == Role::spectator) {
    return gallery_.isFull() ? Outcome::refused("There is no room for more spectators.") : Outcome::done();
  }
  if (roster_.isFull() && (isBot(client) || !roster_.hasBots())) return Outcome::refused("The arena is full.");
  return Outcome::done();
}

std::optional<std::string> Lobby::namePassword(std::string_view password) const {
  if (password_.empty()) return std::string(password);
  if (password == password_) return std::string();
  // Clients have one field for both.
  if (!password.starts_with(password_ + " ")) return std::nullopt;
  return std::string(password.substr(password_.size() + 1));
}

bool Lobby::mustWait(ClientId client, Visitor& visitor, std::string_view preferred, Millis now) const {
  if (!visitor.loginSince) visitor.loginSince = now;
  visitor.wantedColour.reset();
  if (isBot(client)) return !roster_.hasFreeColour();
  const bool mayWait = now - *visitor.loginSince < colourPatience;
  const auto wanted = numberFromText<std::int16_t>(preferred);
  for (const auto& [other, player] : roster_.players()) {
    if (!isBot(other)) continue;
    const bool isWanted = wanted == player.colour && mayWait;
    if (isWanted || (roster_.isFull() && !visitor.wantedColour)) visitor.wantedColour = player.colour;
    if (isWanted) break;
  }
  const bool isLeaving = anyOf(roster_.leavers(), [&](const Player& leaver) { return wanted == leaver.colour; });
  return visitor.wantedColour || !roster_.hasFreeColour() || (isLeaving && mayWait);
}

void Lobby::admit(ClientId client, const Request& request, std::vector<std::string> claimedNames, Millis now) {
  rounds_.prepareFor(client, now);
  const std::string name = visibleName(request.name);
  appendTakenNames(claimedNames);
  Player player{.client = client,
                .node = roster_.nextNode(),
                .colour = *chooseColour(request.colour),
                .name = distinctName(name, claimedNames),
                .spot = startSpot(),
                .isAlive = rounds_.isRunning(),
                .paidUntil = now,
                .session = {.nextPing = now + firstPingDelay},
                .lastReport = now,
                .joined = now};
  output_.log(printable(player.name) + " joined as " + rules::colourNames[static_cast<std::size_t>(player.colour)] +
              ", node " + std::to_string(player.node));
  roster_.sendTo(client,
                 wire::toClient<wire::msgLoginAccepted>(player.colour, player.node, wire::NumberText{player.spot.x},
                                                        wire::NumberText{player.spot.y}));
  showPlayers(client);
  roster_.sendToAll(joinedFrame(player));
  explainName(client, name, player.name);
  if (!player.isAlive) rounds_.explainIntermission(player);
  combat_.tellRunning(client, now);
  economy_.sendFunds(roster_.join(std::move(player)));
}

void Lobby::admitSpectator(ClientId client, const Request& request, std::vector<std::string> claimedNames, Millis now) {
  const std::string typed = visibleName(request.name);
  appendTakenNames(claimedNames);
  for (const auto& [other, spectator] : roster_.spectators()) claimedNames.push_back(skeletonOf(spectator.name));
  const std::string name = distinctName(typed, claimedNames);
  output_.log(printable(name) + " watches");
  const Spot spot = startSpot();
  roster_.sendTo(client,
                 wire::toClient<wire::msgLoginAccepted>(chooseColour(request.colour).value_or(redPlayer), spectatorNode,
                                                        wire::NumberText{spot.x}, wire::NumberText{spot.y}));
  roster_.sendTo(client, wire::toClient<wire::msgAliveState>(spectatorNode, false));
  showPlayers(client);
  combat_.tellRunning(client, now);
  explainName(client, typed, name);
  roster_.tell(client, "You are watching. Only the other spectators get your lines.");
  roster_.tell(client, "To fly, press the right mouse button, or Brakes on a touch screen, and steer.");
  output_.watches(client);
  roster_.spectators().insert(
      {client, {.client = client, .name = name, .session = {.nextPing = now + firstPingDelay}}});
}

void Lobby::explainName(ClientId client, const std::string& typed, const std::string& name) const {
  if (name == typed) return;
  // A client shows its own player under the name that it has sent.
  roster_.tell(client, "Your name is taken or looks like another player's. The others see you as " + name + ".");
}

std::optional<PlayerColour> Lobby::chooseColour(std::string_view preferred) const {
  const auto wanted = numberFromText<std::int16_t>(preferred);
  if (wanted && *wanted >= 0 && *wanted < Roster::colourCount && roster_.isColourFree(PlayerColour{*wanted}))
    return PlayerColour{*wanted};
  const auto free = findIf(playerColours, [&](PlayerColour colour) { return roster_.isColourFree(colour); });
  return free ? std::optional(*free) : std::nullopt;
}

Spot Lobby::startSpot() {
  std::uniform_int_distribution coordinate(startInset, static_cast<int>(worldSize) - startInset);
  const int x = coordinate(random_);
  const int y = coordinate(random_);
  return spotOf(std::to_string(x), std::to_string(y), {static_cast<float>(x), static_cast<float>(y)});
}

void Lobby::appendTakenNames(std::vector<std::string>& skeletons) const {
  for (const auto& [client, player] : roster_.players()) skeletons.push_back(skeletonOf(player.name));
  for (const Player& leaver : roster_.leavers()) skeletons.push_back(skeletonOf(leaver.name));
}

void Lobby::showPlayers(ClientId newcomer) const {
  for (const Player& leaver : roster_.leavers()) roster_.sendTo(newcomer, joinedFrame(leaver));
  for (const auto& [client, player] : roster_.players()) {
    roster_.sendTo(newcomer, joinedFrame(player));
    economy_.sendFundsTo(newcomer, player);
  }
}

void Lobby::tick(Millis now) {
  std::vector<std::pair<ClientId, std::string>> waiting;
  for (auto& [client, visitor] : visitors_) {
    if (visitor.login) waiting.emplace_back(client, *std::exchange(visitor.login, std::nullopt));
  }
  for (const auto& [client, text] : waiting) login(client, text, now);

  std::erase_if(visitors_, [&](const auto& entry) {
    const auto& [client, visitor] = entry;
    if (now - visitor.since < loginTimeLimit) return false;
    const char* reason = visitor.awaitsVerdict ? serverIsBusy : "The arena is full.";
    if (visitor.login) roster_.sendTo(client, wire::toClient<wire::msgLoginDenied>(reason));
    output_.log("client " + std::to_string(client) + " took too long to log in");
    output_.dropped(Drop::lateLogin);
    output_.hangUp(client);
    return true;
  });
}

std::vector<PlayerColour> Lobby::wantedColours() const {
  std::vector<PlayerColour> colours;
  for (const auto& [client, visitor] : visitors_) {
    if (visitor.login && visitor.wantedColour) colours.push_back(*visitor.wantedColour);
  }
  return colours;
}

}  // namespace kelvora::server
