#include "server/arena/chat.h"

#include <string>

#include "protocol/frames.h"
#include "server/arena/plainText.h"

namespace kelvora::server {

void relayChat(Roster& roster, Player& sender, std::string_view fields, Millis now) {
  const auto request = wire::fromClient<wire::msgChat>(fields);
  if (!request || !roster.allowsRequest(sender, now)) return;
  const auto& [target, words] = *request;
  std::string text(words);
  std::erase_if(text, isControl);
  const std::string line = wire::toClient<wire::msgChat>(sender.node, text);
  if (target == -1) return roster.sendToAll(line);
  const Player* addressee = roster.findNode(target);
  if (addressee == nullptr) {
    return roster.sendTo(sender.client, wire::toClient<wire::msgServerText>("That player is not here."));
  }
  roster.sendTo(addressee->client, line);
  if (addressee != &sender) roster.sendTo(sender.client, line);
}

}  // namespace kelvora::server
