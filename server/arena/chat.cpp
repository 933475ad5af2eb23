#include "server/arena/chat.h"

#include <algorithm>
#include <utility>

#include "protocol/frames.h"
#include "server/arena/plainText.h"

namespace kelvora::server {

namespace {

constexpr Millis pingInterval = 12'000;

}  // namespace

void relayChat(Roster& roster, Player& sender, std::string_view fields, Millis now) {
  const auto request = wire::fromClient<wire::msgChat>(fields);
  if (!request || !sender.requests.allows(now)) return;
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

void pingIfDue(Roster& roster, Player& player, Millis now) {
  if (now < player.nextPing) return;
  player.nextPing = now + pingInterval;
  player.pingSent = now;
  roster.sendTo(player.client, wire::toClient<wire::msgPing>(now / 1000));
}

void reportLatency(Roster& roster, Player& player, Millis now) {
  if (!player.pingSent) return;
  const Millis latency = now - *std::exchange(player.pingSent, std::nullopt);
  roster.sendTo(player.client, wire::toClient<wire::msgLatencyReport>(latency));
}

}  // namespace kelvora::server
