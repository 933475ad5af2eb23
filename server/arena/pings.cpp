#include "server/arena/pings.h"

#include <optional>
#include <utility>

#include "protocol/frames.h"

namespace kelvora::server {

namespace {

constexpr Millis pingInterval = 12'000;

}  // namespace

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
