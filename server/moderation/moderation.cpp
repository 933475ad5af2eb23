#include "server/moderation/moderation.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "base/search.h"
#include "base/text.h"
#include "server/arena/plainText.h"
#include "server/moderation/commandLine.h"
#include "server/system/passwords.h"

namespace kelvora::server {

namespace {

std::string withReason(std::string text, const std::string& reason) {
  return text + (reason.empty() ? "." : ": " + reason);
}

}  // namespace

Moderation::Moderation(Arena& arena, BotKeeper& bots, RecordBook& records, ModerationHost& host,
                       ModerationSettings settings)
    : arena_(arena),
      bots_(bots),
      records_(records),
      host_(host),
      moderatorHash_(std::move(settings.moderatorHash)),
      penalties_(host, std::move(settings.bansFile)),
      ballot_(arena, host) {}

void Moderation::run(ClientId client, std::string_view line, Millis now) {
  const auto players = arena_.players(now);
  const auto caller = findBy(players, &PlayerView::client, client);
  if (!caller) return;
  if (line.size() > maxLine) return arena_.tell(client, "That line is too long.");
  std::string_view rest = line.substr(std::min<std::size_t>(1, line.size()));
  const std::string name = lowerCase(takeWord(rest));
  const auto all = commands();
  const auto command = findIf(all, [&](const Command& entry) { return entry.name == name; });
  if (!command) return arena_.tell(client, "There is no such command. !help lists them.");
  if (command->isForModerators) {
    if (!isModerator(client)) return arena_.tell(client, "Only moderators may do that.");
    host_.log("moderator " + describe(*caller) + ": " + printable(line));
  }
  const Outcome outcome = (this->*command->run)({*caller, players, rest, now});
  if (outcome.isRefused()) arena_.tell(client, outcome.reason());
  carryOut(now);
}

void Moderation::left(ClientId client) {
  loggingIn_.erase(client);
  moderators_.erase(client);
}

void Moderation::tick(Millis now) {
  carryOut(now);
  penalties_.tick();
}

Outcome Moderation::mayEnter(const std::string& network) const {
  const Penalty* ban = penalties_.find(PenaltyKind::ban, network);
  if (ban == nullptr) return Outcome::done();
  return Outcome::refused(withReason("You are banned " + untilText(ban->end), ban->reason));
}

std::string Moderation::muteReason(const std::string& network) const {
  const Penalty* mute = penalties_.find(PenaltyKind::mute, network);
  if (mute == nullptr) return {};
  return "Nobody gets your lines. " + withReason("You are muted " + untilText(mute->end), mute->reason);
}

std::size_t Moderation::count(PenaltyKind kind) const {
  const auto& all = penalties_.penalties().all();
  const Seconds now = host_.wallClock();
  return static_cast<std::size_t>(std::count_if(
      all.begin(), all.end(), [&](const Penalty& penalty) { return penalty.kind == kind && penalty.end > now; }));
}

Outcome Moderation::login(Call call) {
  const ClientId client = call.caller.client;
  if (moderatorHash_.empty()) return Outcome::refused("This server has no moderators.");
  if (isModerator(client)) return Outcome::refused("You are a moderator already.");
  if (call.rest.empty()) return Outcome::refused("Type !login and the password.");
  if (loggingIn_.contains(client)) return Outcome::refused("Your last attempt is still being checked.");
  if (!logins_.allows(host_.network(client), call.now)) {
    return Outcome::refused("Too many attempts from your network. Try again in a minute.");
  }
  const auto isRight = std::make_shared<bool>(false);
  const bool isUnderWay = host_.runAside(
      [password = std::string(call.rest), hash = moderatorHash_, isRight] { *isRight = matches(password, hash); },
      [this, client, who = describe(call.caller), isRight] { concludeLogin(client, who, *isRight); });
  if (!isUnderWay) return Outcome::refused("The server is busy. Try again in a moment.");
  loggingIn_.insert(client);
  return Outcome::done();
}

void Moderation::concludeLogin(ClientId client, const std::string& who, bool isRight) {
  host_.log((isRight ? "moderator " : "wrong moderators' password from ") + who + (isRight ? " has logged in" : ""));
  if (loggingIn_.erase(client) == 0) return;  // has left meanwhile
  if (isRight) moderators_.insert(client);
  arena_.tell(client, isRight ? "You are a moderator now. !help lists your commands." : "Wrong password.");
}

Outcome Moderation::kick(Call call) {
  const PlayerView* player = takePlayer(call.rest, call.players);
  if (player == nullptr) return Outcome::refused("Nobody here has that name or colour.");
  if (isBot(player->client)) return Outcome::refused("That is a bot. !bots changes their number.");
  arena_.expel(player->client, withReason("You have been kicked", std::string(call.rest)));
  arena_.tellAll("A moderator has kicked " + player->name + ".");
  return Outcome::done();
}

Outcome Moderation::punish(PenaltyKind kind, Call call) {
  const PlayerView* player = takePlayer(call.rest, call.players);
  if (player == nullptr) return Outcome::refused("Nobody here has that name or colour.");
  if (isBot(player->client)) return Outcome::refused("That is a bot.");
  const std::string network = host_.network(player->client);
  if (network == host_.network(call.caller.client)) return Outcome::refused("That player is in your own network.");
  Seconds length = usualLength;
  std::string_view rest = call.rest;
  if (const auto given = readLength(takeWord(rest))) {
    length = *given;
    call.rest = rest;
  }
  const Seconds end = endOf(host_.wallClock(), length);
  const Outcome outcome = penalties_.add(
      {.kind = kind, .network = network, .end = end, .name = player->name, .reason = std::string(call.rest)});
  if (outcome.isRefused()) return Outcome::refused("Not done: " + outcome.reason() + ".");
  const std::string name = player->name;
  if (kind == PenaltyKind::ban) {
    expelNetwork(network, mayEnter(network).reason(), call.now);
    arena_.tellAll("A moderator has banned " + name + ".");
  }
  answer(call, std::string(kind == PenaltyKind::ban ? "Banned " : "Muted ") + name + " (" + network + ") " +
                   untilText(end) + ".");
  return Outcome::done();
}

Outcome Moderation::ban(Call call) { return punish(PenaltyKind::ban, call); }
Outcome Moderation::mute(Call call) { return punish(PenaltyKind::mute, call); }

Outcome Moderation::pardon(PenaltyKind kind, Call call) {
  const auto removed = penalties_.remove(kind, call.rest);
  const std::string word(wordFor(kind));
  if (removed.empty()) return Outcome::refused("There is no " + word + " of that name or network. !bans lists them.");
  for (const Penalty& penalty : removed) answer(call, "Lifted the " + word + " of " + penalty.network + ".");
  return Outcome::done();
}

Outcome Moderation::unban(Call call) { return pardon(PenaltyKind::ban, call); }
Outcome Moderation::unmute(Call call) { return pardon(PenaltyKind::mute, call); }

void Moderation::expelNetwork(const std::string& network, const std::string& reason, Millis now) {
  for (const PlayerView& player : arena_.players(now)) {
    if (!isBot(player.client) && host_.network(player.client) == network) arena_.expel(player.client, reason);
  }
}

void Moderation::carryOut(Millis now) {
  const auto motion = ballot_.passed(now);
  if (!motion) return;
  host_.log("the vote to " + printable(motion->text()) + " has passed");
  if (!motion->kicked) return arena_.restartRound();
  const std::string network = host_.network(*motion->kicked);
  const Penalty ban{.kind = PenaltyKind::ban,
                    .network = network,
                    .end = endOf(host_.wallClock(), kickedFor),
                    .name = motion->name,
                    .reason = "the players have voted"};
  if (const Penalty* longer = penalties_.find(PenaltyKind::ban, network); longer == nullptr) {
    if (const Outcome outcome = penalties_.add(ban); outcome.isRefused()) host_.log("no ban: " + outcome.reason());
  }
  arena_.expel(*motion->kicked, "The players have voted to kick you.");
}

std::string Moderation::describe(const PlayerView& player) const {
  return printable(player.name) + " (client " + std::to_string(player.client) + ", " + host_.network(player.client) +
         ")";
}

}  // namespace kelvora::server
