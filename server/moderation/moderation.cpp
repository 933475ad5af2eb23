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
  const Call call{*caller, players, rest, now};
  const Outcome outcome = runIfAvailable(*command, call, line);
  if (outcome.isRefused()) arena_.tell(client, outcome.reason());
  carryOut(now);
}

Outcome Moderation::availability(const Command& command, ClientId client) const {
  if (command.needs == Needs::Password && moderatorHash_.empty()) {
    return Outcome::refused("This server has no moderators.");
  }
  if (command.needs == Needs::Records && !records_.isKept()) return Outcome::refused("This server keeps no records.");
  if (command.needs == Needs::Moderator && !isModerator(client)) {
    return Outcome::refused("Only moderators may do that.");
  }
  return Outcome::done();
}

Outcome Moderation::runIfAvailable(const Command& command, const Call& call, std::string_view line) {
  Outcome available = availability(command, call.caller.client);
  if (available.isRefused()) return available;
  return command.needs == Needs::Moderator ? runForModerators(command, call, line) : (this->*command.run)(call);
}

Outcome Moderation::runForModerators(const Command& command, Call call, std::string_view line) {
  if (command.hasTarget) call.target = takeTarget(call);
  // Described first, because the target may be gone afterwards.
  const std::string act = "moderator " + describe(call.caller.client, call.caller.name) +
                          (call.target ? " on " + describe(call.target->client, call.target->name) : "") + ": " +
                          printable(line);
  Outcome outcome = perform(command, call);
  host_.logAct(act + (outcome.isRefused() ? " (refused: " + outcome.reason() + ")" : ""));
  return outcome;
}

Outcome Moderation::perform(const Command& command, const Call& call) {
  if (command.hasTarget && !call.target) return Outcome::refused(nobodyHasThatName);
  if (command.hasTarget && isBot(call.target->client)) {
    return Outcome::refused("That is a bot. !bots changes their number.");
  }
  return (this->*command.run)(call);
}

void Moderation::left(ClientId client) {
  loggingIn_.erase(client);
  moderators_.erase(client);
}

void Moderation::tick(Millis now) {
  carryOut(now);
  penalties_.tick();
}

void Moderation::reread(Millis now) {
  penalties_.reread();
  expelBanned(now);
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
  if (isModerator(client)) return Outcome::refused("You are a moderator already.");
  if (call.rest.empty()) return Outcome::refused("Type !login and the password.");
  if (loggingIn_.contains(client)) return Outcome::refused("Your last attempt is still being checked.");
  if (!logins_.allows(host_.network(client), call.now)) {
    return Outcome::refused("Too many attempts from your network. Try again in a minute.");
  }
  const auto isRight = std::make_shared<bool>(false);
  const bool isUnderWay = host_.runAside(
      [password = std::string(call.rest), hash = moderatorHash_, isRight] { *isRight = matches(password, hash); },
      [this, client, who = describe(call.caller.client, call.caller.name), isRight] {
        concludeLogin(client, who, *isRight);
      });
  if (!isUnderWay) return Outcome::refused(serverIsBusy);
  loggingIn_.insert(client);
  return Outcome::done();
}

void Moderation::concludeLogin(ClientId client, const std::string& who, bool isRight) {
  const bool isHere = loggingIn_.erase(client) != 0;
  if (!isRight) {
    host_.log("wrong moderators' password from " + who);
    return arena_.tell(client, "Wrong password.");
  }
  if (!isHere) return;
  host_.logAct("moderator " + who + " has logged in");
  moderators_.insert(client);
  arena_.tell(client, "You are a moderator now. !help lists your commands.");
}

std::optional<Moderation::Target> Moderation::takeTarget(Call& call) const {
  if (const PlayerView* player = takePlayer(call.rest, call.players))
    return Target{player->client, player->name, false};
  const Spectator* spectator = takeSpectator(call.rest, arena_.spectators());
  return spectator ? std::optional(Target{spectator->client, spectator->name, true}) : std::nullopt;
}

Outcome Moderation::kick(Call call) {
  arena_.expel(call.target->client, withReason("You have been kicked", std::string(call.rest)));
  if (call.target->isSpectator) {
    answer(call, "Kicked " + call.target->name + ", who was watching.");
  } else {
    arena_.tellAll("A moderator has kicked " + call.target->name + ".");
  }
  return Outcome::done();
}

Outcome Moderation::punish(PenaltyKind kind, Call call) {
  const std::string network = host_.network(call.target->client);
  if (network == host_.network(call.caller.client)) return Outcome::refused("That player is in your own network.");
  Seconds length = usualLength;
  std::string_view rest = call.rest;
  if (const auto given = readLength(lowerCase(takeWord(rest)))) {
    length = *given;
    call.rest = rest;
  }
  const Seconds end = endOf(host_.wallClock(), length);
  const std::string& name = call.target->name;
  const Outcome outcome =
      penalties_.add({.kind = kind, .network = network, .end = end, .name = name, .reason = std::string(call.rest)});
  if (outcome.isRefused()) return Outcome::refused("Not done: " + outcome.reason() + ".");
  if (kind == PenaltyKind::ban) {
    expelBanned(call.now);
    if (!call.target->isSpectator) arena_.tellAll("A moderator has banned " + name + ".");
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

void Moderation::expelBanned(Millis now) {
  std::vector<ClientId> people;
  for (const PlayerView& player : arena_.players(now)) {
    if (!isBot(player.client)) people.push_back(player.client);
  }
  for (const auto& [client, spectator] : arena_.spectators()) people.push_back(client);
  for (const ClientId client : people) {
    const Outcome outcome = mayEnter(host_.network(client));
    if (outcome.isRefused()) arena_.expel(client, outcome.reason());
  }
}

void Moderation::carryOut(Millis now) {
  const auto motion = ballot_.passed(now);
  if (!motion) return;
  host_.log("the vote to " + printable(motion->text()) + " has passed");
  if (!motion->kicked) return arena_.restartRound();
  const auto players = arena_.players(now);
  const bool isHere = findBy(players, &PlayerView::client, *motion->kicked) != nullptr;
  for (const PlayerView& player : players) {
    // Leaving and coming back doesn't help. Others of the network may stay.
    const bool isBack = !isHere && player.client > *motion->kicked && host_.network(player.client) == motion->network;
    if (isBack || player.client == *motion->kicked) arena_.expel(player.client, "The players have voted to kick you.");
  }
  const Seconds end = endOf(host_.wallClock(), kickedFor);
  const Penalty* const known = penalties_.find(PenaltyKind::ban, motion->network);
  if (known != nullptr && known->end >= end) return;
  const Outcome outcome = penalties_.add({.kind = PenaltyKind::ban,
                                          .network = motion->network,
                                          .end = end,
                                          .name = motion->name,
                                          .reason = "the players have voted"});
  if (outcome.isRefused()) host_.log("no ban: " + outcome.reason());
}

std::string Moderation::describe(ClientId client, const std::string& name) const {
  if (isBot(client)) return printable(name) + " (bot)";
  return printable(name) + " (client " + std::to_string(client) + ", " + host_.network(client) + ")";
}

}  // namespace kelvora::server
