// Chat and pings.

#include <algorithm>
#include <utility>

#include "base/wholeNumber.h"
#include "network/wire/wireFormat.h"
#include "server/arena/arena.h"
#include "server/arena/plainText.h"

namespace kelvora::server {

void Arena::pingReply(ClientId client, Player& player, Millis now) {
  if (!player.pingSent) return;
  sendTo(client, wire::msgLatencyReport, {std::to_string(now - *std::exchange(player.pingSent, std::nullopt))});
}

void Arena::chat(ClientId client, Player& player, const Fields& fields, Millis now) {
  if (fields.size() != 2 || !player.requests.allows(now)) return;
  const auto target = wholeNumber<std::int16_t>(fields[0]);
  if (!target) return;
  std::string text(fields[1]);
  std::erase_if(text, isControl);
  const std::vector<std::string> line = {std::to_string(player.node), text};
  if (*target == -1) return sendToAll(wire::msgChat, line);
  const auto addressee = findNode(*target);
  if (addressee == clients_.end()) return sendTo(client, wire::msgServerText, {"That player is not here."});
  sendTo(addressee->first, wire::msgChat, line);
  if (addressee->first != client) sendTo(client, wire::msgChat, line);
}

}  // namespace kelvora::server
