#include "server/arena/chat.h"

#include <algorithm>
#include <utility>

#include "base/wholeNumber.h"
#include "protocol/wireFormat.h"
#include "server/arena/plainText.h"

namespace kelvora::server {

namespace {

constexpr Millis pingInterval = 12'000;

}  // namespace

void relayChat(Roster& roster, Player& sender, const RequestFields& fields, Millis now) {
  if (fields.size() != 2 || !sender.requests.allows(now)) return;
  const auto target = wholeNumber<std::int16_t>(fields[0]);
  if (!target) return;
  std::string text(fields[1]);
  std::erase_if(text, isControl);
  const std::vector<std::string> line = {std::to_string(sender.node), text};
  if (*target == -1) return roster.sendToAll(wire::msgChat, line);
  const Player* addressee = roster.findNode(*target);
  if (addressee == nullptr) {
    return roster.sendTo(sender.client, wire::msgServerText, {"That player is not here."});
  }
  roster.sendTo(addressee->client, wire::msgChat, line);
  if (addressee != &sender) roster.sendTo(sender.client, wire::msgChat, line);
}

void pingIfDue(Roster& roster, Player& player, Millis now) {
  if (now < player.nextPing) return;
  player.nextPing = now + pingInterval;
  player.pingSent = now;
  roster.sendTo(player.client, wire::msgPing, {std::to_string(now / 1000)});
}

void reportLatency(Roster& roster, Player& player, Millis now) {
  if (!player.pingSent) return;
  const Millis latency = now - *std::exchange(player.pingSent, std::nullopt);
  roster.sendTo(player.client, wire::msgLatencyReport, {std::to_string(latency)});
}

}  // namespace kelvora::server
