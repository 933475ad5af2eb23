// The table of commands, and those that only talk to the arena and its bots.

#include <array>
#include <utility>

#include "base/numberFromText.h"
#include "base/search.h"
#include "base/text.h"
#include "protocol/rules.h"
#include "server/arena/plainText.h"
#include "server/moderation/commandLine.h"
#include "server/moderation/moderation.h"

namespace kelvora::server {

namespace {

constexpr std::size_t maxBansShown = 5;

}  // namespace

std::span<const Moderation::Command> Moderation::commands() {
  static constexpr std::array table = {
      Command{"help", "[COMMAND]", "Lists the commands, or explains one.", Needs::Nothing, &Moderation::help},
      Command{"who", "", "Lists the players.", Needs::Nothing, &Moderation::who},
      Command{"vote", "kick NAME | restart | yes",
              "Starts a vote, or agrees to it. It needs more than half of the people here within 30 seconds.",
              Needs::Nothing, &Moderation::vote},
      Command{"login", "PASSWORD", "Makes you a moderator.", Needs::Password, &Moderation::login},
      Command{"top", "", "Lists the players with the most captures.", Needs::Records, &Moderation::top},
      Command{"stats", "[NAME]", "Tells what you or somebody else has done.", Needs::Records, &Moderation::stats},
      Command{"claim", "PASSWORD", "Keeps your name for you. You need the password for it from then on.",
              Needs::Records, &Moderation::claim},
      Command{"kick", "NAME [REASON]", "Removes a player, who may come back.", Needs::Moderator, &Moderation::kick,
              true},
      Command{"ban", "NAME [TIME] [REASON]", "Keeps a player's network out, such as for 30m, 2h, 7d or forever.",
              Needs::Moderator, &Moderation::ban, true},
      Command{"unban", "NAME | NETWORK", "Lifts a ban.", Needs::Moderator, &Moderation::unban},
      Command{"mute", "NAME [TIME] [REASON]", "Nobody gets the lines of the player's network any more.",
              Needs::Moderator, &Moderation::mute, true},
      Command{"unmute", "NAME | NETWORK", "Lifts a mute.", Needs::Moderator, &Moderation::unmute},
      Command{"bans", "[WORD]", "Lists the newest bans and mutes, or those with a word in them.", Needs::Moderator,
              &Moderation::bans},
      Command{"say", "TEXT", "Sends everybody a line of the server.", Needs::Moderator, &Moderation::say},
      Command{"bots", "COUNT", "Changes the number of bots, 0 to 5.", Needs::Moderator, &Moderation::setBots},
      Command{"skill", "easy | normal | hard | mixed", "Changes the skill of the bots.", Needs::Moderator,
              &Moderation::setSkill},
      Command{"restart", "", "Begins a new round without a winner of this one.", Needs::Moderator,
              &Moderation::restart},
      Command{"end", "", "Ends the round, with its winner.", Needs::Moderator, &Moderation::end},
  };
  return table;
}

Outcome Moderation::help(Call call) {
  const std::string name = lowerCase(takeWord(call.rest));
  if (!name.empty()) {
    const auto all = commands();
    const auto command =
        findIf(all, [&](const Command& entry) { return entry.name == name || "!" + std::string(entry.name) == name; });
    if (!command) return Outcome::refused("There is no such command. !help lists them.");
    answer(call, "!" + std::string(command->name) + (command->arguments.empty() ? "" : " ") +
                     std::string(command->arguments) + ": " + std::string(command->help));
    return Outcome::done();
  }
  const auto list = [&](bool isForModerators) {
    std::string names;
    for (const Command& command : commands()) {
      if ((command.needs == Needs::Moderator) != isForModerators) continue;
      if (!availability(command, call.caller.client).isRefused()) names += " !" + std::string(command.name);
    }
    return names;
  };
  answer(call, "Commands:" + list(false) + ". !help COMMAND explains one.");
  if (isModerator(call.caller.client)) answer(call, "For moderators:" + list(true) + ".");
  return Outcome::done();
}

Outcome Moderation::who(Call call) {
  for (const PlayerView& player : call.players) {
    std::string line = std::string(rules::colourNames[static_cast<std::size_t>(player.colour)]) + ": " + player.name;
    if (isBot(player.client)) line += ", bot";
    if (isModerator(player.client)) line += ", moderator";
    line += ", " + counted(player.roundCaptures, "capture");
    if (isModerator(call.caller.client) && !isBot(player.client)) {
      const std::string network = host_.network(player.client);
      line += ", " + network + (muteReason(network).empty() ? "" : ", muted");
    }
    answer(call, line);
  }
  if (!isModerator(call.caller.client)) return Outcome::done();
  for (const auto& [client, spectator] : arena_.spectators()) {
    answer(call, "Watching: " + spectator.name + ", " + host_.network(client));
  }
  return Outcome::done();
}

Outcome Moderation::vote(Call call) {
  const std::string what = lowerCase(takeWord(call.rest));
  if (what == "yes") return ballot_.agree(call.caller);
  if (what == "restart") return ballot_.begin(call.caller, {}, call.now);
  if (what != "kick") return Outcome::refused("Type !vote kick NAME, !vote restart or !vote yes.");
  const PlayerView* player = takePlayer(call.rest, call.players);
  if (player == nullptr) return Outcome::refused(nobodyHasThatName);
  if (isBot(player->client)) return Outcome::refused("Bots can't be kicked.");
  if (player->client == call.caller.client) return Outcome::refused("You can leave by yourself.");
  Motion motion{.kicked = player->client, .name = player->name, .network = host_.network(player->client)};
  return ballot_.begin(call.caller, std::move(motion), call.now);
}

Outcome Moderation::bans(Call call) {
  const std::string word = lowerCase(takeWord(call.rest));
  const auto& all = penalties_.penalties().all();
  std::size_t shown = 0;
  for (auto penalty = all.rbegin(); penalty != all.rend(); ++penalty) {
    std::string line = std::string(wordFor(penalty->kind)) + " " + penalty->network + " " + untilText(penalty->end);
    if (!penalty->name.empty()) line += " " + penalty->name;
    if (!penalty->reason.empty()) line += ": " + penalty->reason;
    if (lowerCase(line).find(word) == line.npos) continue;
    if (++shown <= maxBansShown) answer(call, line);
  }
  if (all.empty()) {
    answer(call, "Nobody is banned or muted.");
  } else {
    answer(call, std::to_string(shown) + (word.empty() ? " in all." : " with that word."));
  }
  return Outcome::done();
}

Outcome Moderation::say(Call call) {
  if (call.rest.empty()) return Outcome::refused("Type !say and a text.");
  arena_.tellAll(std::string(call.rest));
  return Outcome::done();
}

Outcome Moderation::setBots(Call call) {
  const auto count = numberFromText<int>(takeWord(call.rest));
  if (!count || *count < 0 || *count > BotSettings::maxCount) {
    return Outcome::refused("The number of bots is 0 to " + std::to_string(BotSettings::maxCount) + ".");
  }
  bots_.configure({.count = *count, .skill = bots_.settings().skill}, call.now);
  arena_.tellAll("The number of bots is now " + std::to_string(*count) + ".");
  return Outcome::done();
}

Outcome Moderation::setSkill(Call call) {
  const std::string word = lowerCase(takeWord(call.rest));
  const auto skill = skillLevel(word);
  if (!skill) return Outcome::refused("The skill is easy, normal, hard or mixed.");
  bots_.configure({.count = bots_.settings().count, .skill = *skill}, call.now);
  arena_.tellAll("The skill of the bots is now " + word + ".");
  return Outcome::done();
}

Outcome Moderation::restart(Call) {
  arena_.restartRound();
  return Outcome::done();
}

Outcome Moderation::end(Call) {
  if (!arena_.isRoundRunning()) return Outcome::refused("No round is running.");
  arena_.endRound();
  return Outcome::done();
}

}  // namespace kelvora::server
