#include "server/arena/pings.h"

#include <optional>
#include <utility>

#include "protocol/frames.h"

namespace kelvora::server {

namespace {

constexpr Millis pingInterval = 12'000;

}  // namespace

void pingIfDue(const Roster& roster, ClientId client, Session& session, Millis now) {
  if (now < session.nextPing) return;
  session.nextPing = now + pingInterval;
  session.pingSent = now;
  roster.sendTo(client, wire::toClient<wire::msgPing>(now / 1000));
}

void reportLatency(const Roster& roster, ClientId client, Session& session, Millis now) {
  if (!session.pingSent) return;
  const Millis latency = now - *std::exchange(session.pingSent, std::nullopt);
  roster.sendTo(client, wire::toClient<wire::msgLatencyReport>(latency));
}

}  // namespace kelvora::server
