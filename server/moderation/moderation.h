#pragma once

#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "server/arena/arena.h"
#include "server/bots/botKeeper.h"
#include "server/moderation/ballot.h"
#include "server/moderation/host.h"
#include "server/moderation/networkLimit.h"
#include "server/moderation/penaltyFile.h"
#include "server/moderation/settings.h"
#include "server/records/recordBook.h"

namespace kelvora::server {

/// The commands in the chat line, the moderators, votes, bans and mutes of an arena.
class Moderation {
 public:
  static constexpr std::size_t maxLine = 256;    ///< bytes of a command
  static constexpr double loginBurst = 5;        ///< attempts of a network at once, then one a minute
  static constexpr Seconds kickedFor = 300;      ///< ban of a player whom a vote has kicked
  static constexpr Seconds usualLength = 3'600;  ///< of a ban or mute

  /// Throws std::runtime_error if the bans can't be read.
  Moderation(Arena& arena, BotKeeper& bots, RecordBook& records, ModerationHost& host, ModerationSettings settings);

  /// Carries out a player's line, which begins with "!". Answers go to that player alone.
  void run(ClientId client, std::string_view line, Millis now);
  /// Forgets a client that has gone.
  void left(ClientId client);
  /// Call this several times a second.
  void tick(Millis now);
  /// Reads the bans again, and removes players who are banned now.
  void reread(Millis now);

  /// Refuses people of a banned network, with a text for them.
  Outcome mayEnter(const std::string& network) const;
  /// Why nobody gets the lines of people of this network, as a text for them. Empty if everybody does.
  std::string muteReason(const std::string& network) const;
  std::size_t count(PenaltyKind kind) const;

 private:
  struct Target {
    ClientId client;
    std::string name;
    bool isSpectator;
  };
  struct Call {
    const PlayerView& caller;
    const std::vector<PlayerView>& players;
    std::string_view rest;  // of the line
    Millis now;
    std::optional<Target> target{};  // the person that the command is about
  };
  /// A command's requirement.
  enum class Needs { Nothing, Password, Records, Moderator };
  struct Command {
    std::string_view name;
    std::string_view arguments;
    std::string_view help;
    Needs needs;
    Outcome (Moderation::*run)(Call);
    bool hasTarget = false;  // begins with the name of a person who is here
  };
  static std::span<const Command> commands();

  /// Cuts the name of a player or spectator off the call.
  std::optional<Target> takeTarget(Call& call) const;
  /// Refuses a command for which this server, or the client, lacks what it needs.
  Outcome availability(const Command& command, ClientId client) const;
  Outcome runIfAvailable(const Command& command, const Call& call, std::string_view line);
  /// Logs the act and whether it was refused.
  Outcome runForModerators(const Command& command, Call call, std::string_view line);
  Outcome perform(const Command& command, const Call& call);
  // Refusals are texts for the caller.
  Outcome help(Call call);
  Outcome who(Call call);
  Outcome vote(Call call);
  Outcome login(Call call);
  Outcome top(Call call);
  Outcome stats(Call call);
  Outcome claim(Call call);
  Outcome kick(Call call);
  Outcome ban(Call call);
  Outcome unban(Call call);
  Outcome mute(Call call);
  Outcome unmute(Call call);
  Outcome bans(Call call);
  Outcome say(Call call);
  Outcome setBots(Call call);
  Outcome setSkill(Call call);
  Outcome restart(Call call);
  Outcome end(Call call);

  Outcome punish(PenaltyKind kind, Call call);
  Outcome pardon(PenaltyKind kind, Call call);
  void expelBanned(Millis now);
  void carryOut(Millis now);
  bool isModerator(ClientId client) const { return moderators_.contains(client); }
  void answer(const Call& call, const std::string& text) const { arena_.tell(call.caller.client, text); }
  void concludeLogin(ClientId client, const std::string& who, bool isRight);
  /// For the log: name and network.
  std::string describe(ClientId client, const std::string& name) const;

  Arena& arena_;
  BotKeeper& bots_;
  RecordBook& records_;
  ModerationHost& host_;
  const std::string moderatorHash_;
  PenaltyFile penalties_;
  Ballot ballot_;
  NetworkLimit logins_{loginBurst, 60'000};
  NetworkLimit claims_{1, 60'000};
  std::set<ClientId> loggingIn_;
  std::set<ClientId> moderators_;
};

}  // namespace kelvora::server
