#include "server/arena/pendingCaptures.h"

#include <algorithm>

#include "base/search.h"

namespace kelvora::server {

void PendingCaptures::add(std::int16_t winner, std::int16_t loser, const Spot& vertex, Millis now,
                          Millis extendedUntil) {
  captures_.push_back({winner, loser, vertex, std::max(now, extendedUntil) + landingTime});
}

void PendingCaptures::extend(std::int16_t winner, Millis until) {
  for (Capture& capture : captures_) {
    if (capture.winner != winner || capture.isExtended) continue;
    capture.isExtended = true;
    capture.landsAt = std::max(capture.landsAt, until + landingTime);
  }
}

void PendingCaptures::prune(Millis now) {
  std::erase_if(captures_, [&](const Capture& capture) { return capture.landsAt <= now; });
}

const Spot* PendingCaptures::vertexOf(std::int16_t winner) const {
  const auto found = findBy(captures_, &Capture::winner, winner);
  return found ? &found->vertex : nullptr;
}

bool PendingCaptures::isNamedByAnother(std::int16_t winner, Vector place) const {
  return anyOf(captures_,
               [&](const Capture& capture) { return capture.winner != winner && capture.vertex.read == place; });
}

bool PendingCaptures::involves(std::int16_t node) const {
  return anyOf(captures_, [&](const Capture& capture) { return capture.winner == node || capture.loser == node; });
}

Millis PendingCaptures::landsAt(std::int16_t loser) const {
  Millis latest = 0;
  for (const Capture& capture : captures_) {
    if (capture.loser == loser) latest = std::max(latest, capture.landsAt);
  }
  return latest;
}

}  // namespace kelvora::server
