#include "server/arena/chat.h"

#include <string>

#include "base/text.h"
#include "protocol/frames.h"
#include "server/arena/plainText.h"

namespace kelvora::server {

namespace {

/// The command in a line, from its "!" on; empty if it has none. A client puts a word before what is typed while it
/// writes to one player.
std::string commandIn(std::string_view text) {
  constexpr std::string_view privately = "(private) ";
  if (lowerCase(text.substr(0, privately.size())) == privately) text.remove_prefix(privately.size());
  const std::string line = trimBlanks(text);
  return line.starts_with('!') ? line : std::string();
}

/// True if a player's lines must reach nobody. Tells the player so, but once.
bool isMuted(const Roster& roster, Player& player) {
  const std::string reason = roster.muteReason(player.client);
  if (reason.empty()) {
    player.knowsOfMute = false;
  } else if (!player.knowsOfMute) {
    player.knowsOfMute = true;
    roster.tell(player.client, reason);
  }
  return !reason.empty();
}

}  // namespace

void relayChat(Roster& roster, Player& sender, std::string_view fields, Millis now) {
  const auto request = wire::fromClient<wire::msgChat>(fields);
  if (!request || !roster.allowsRequest(sender, now)) return;
  const auto& [target, words] = *request;
  std::string text(words);
  std::erase_if(text, isControl);
  if (const std::string command = commandIn(text); !command.empty()) return roster.command(sender.client, command);
  if (isMuted(roster, sender)) return;
  const std::string line = wire::toClient<wire::msgChat>(sender.node, text);
  if (target == -1) return roster.sendToAll(line);
  const Player* addressee = roster.findNode(target);
  if (addressee == nullptr) return roster.tell(sender.client, "That player is not here.");
  roster.sendTo(addressee->client, line);
  if (addressee != &sender) roster.sendTo(sender.client, line);
}

}  // namespace kelvora::server
