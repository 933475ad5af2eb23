#include "server/arena/gallery.h"

#include "server/arena/chat.h"
#include "server/arena/pings.h"

namespace kelvora::server {

void Gallery::received(Spectator& spectator, const wire::Incoming& message, Millis now) {
  switch (message.id) {
    case wire::msgPingReply:
      return reportLatency(roster_, spectator.client, spectator.session, now);
    case wire::msgChat:
      return relayChat(roster_, spectator, message.fields, now);
    case wire::msgSpawnRequest:
    case wire::msgBuyRequest:
    case wire::msgSellRequest:
    case wire::msgActivateRequest:
      if (!roster_.allowsRequest(spectator.session, now)) return;
      return roster_.tell(spectator.client, "You are watching. To play, connect to the game's own port.");
    default:
      return;
  }
}

void Gallery::show(const std::string& frame) const {
  for (const auto& [client, spectator] : roster_.spectators()) roster_.sendTo(client, frame);
}

void Gallery::tick(Millis now) {
  for (auto& [client, spectator] : roster_.spectators()) pingIfDue(roster_, client, spectator.session, now);
}

}  // namespace kelvora::server
