#include "server/arena/chat.h"

#include <cstdint>
#include <optional>
#include <string>

#include "base/text.h"
#include "protocol/frames.h"
#include "server/arena/plainText.h"

namespace kelvora::server {

namespace {

constexpr std::size_t maxSpectatorLine = 1'000;  // bytes; the name has to fit into the frame, too

/// The command in a line, from its "!" on; empty if it has none. A client puts a word before what is typed while it
/// writes to one player.
std::string commandIn(std::string_view text) {
  constexpr std::string_view privately = "(private) ";
  if (lowerCase(text.substr(0, privately.size())) == privately) text.remove_prefix(privately.size());
  const std::string line = trimBlanks(text);
  return line.starts_with('!') ? line : std::string();
}

/// True if a client's lines must reach nobody. Tells the client so, but once.
bool isMuted(const Roster& roster, ClientId client, Session& session) {
  const std::string reason = roster.muteReason(client);
  if (reason.empty()) {
    session.knowsOfMute = false;
  } else if (!session.knowsOfMute) {
    session.knowsOfMute = true;
    roster.tell(client, reason);
  }
  return !reason.empty();
}

struct Line {
  std::int16_t target;
  std::string text;
  std::string command{};  // empty if it is none
};

/// The line that a client has typed; nothing if it is invalid or too early.
std::optional<Line> lineIn(const Roster& roster, Session& session, std::string_view fields, Millis now) {
  const auto request = wire::fromClient<wire::msgChat>(fields);
  if (!request || !roster.allowsRequest(session, now)) return std::nullopt;
  const auto& [target, words] = *request;
  Line line{target, std::string(words)};
  std::erase_if(line.text, isControl);
  line.command = commandIn(line.text);
  return line;
}

}  // namespace

void relayChat(Roster& roster, Player& sender, std::string_view fields, Millis now) {
  const auto typed = lineIn(roster, sender.session, fields, now);
  if (!typed) return;
  if (!typed->command.empty()) return roster.command(sender.client, typed->command);
  if (isMuted(roster, sender.client, sender.session)) return;
  const std::string line = wire::toClient<wire::msgChat>(sender.node, typed->text);
  if (typed->target == -1) return roster.sendToAll(line);
  const Player* addressee = roster.findNode(typed->target);
  if (addressee == nullptr) return roster.tell(sender.client, "That player is not here.");
  roster.sendTo(addressee->client, line);
  if (addressee != &sender) roster.sendTo(sender.client, line);
}

void relayChat(Roster& roster, Spectator& sender, std::string_view fields, Millis now) {
  const auto typed = lineIn(roster, sender.session, fields, now);
  if (!typed) return;
  if (!typed->command.empty()) return roster.tell(sender.client, "Only players have commands.");
  if (typed->target != -1) {
    return roster.tell(sender.client, "Players don't get your lines. Switch to public chat for the other spectators.");
  }
  if (isMuted(roster, sender.client, sender.session)) return;
  // Not a player's line: a client takes a node that it doesn't know for that of its first opponent.
  const std::string line = "[" + sender.name + ", watching] " + typed->text.substr(0, maxSpectatorLine);
  for (const auto& [client, spectator] : roster.spectators()) roster.tell(client, line);
}

}  // namespace kelvora::server
