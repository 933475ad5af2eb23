#include "server/arena/enclosure.h"

#include "server/arena/geometry.h"

namespace kelvora::server {

namespace {

std::optional<Spot> chooseVertex(const Player& winner, std::size_t firstOfLoop, const PendingCaptures& pending) {
  if (const Spot* named = pending.vertexOf(winner.node)) return *named;
  // The oldest vertex expires first, so the loser learns of the capture soonest.
  const auto vertices = winner.tail.vertices();
  for (std::size_t i = firstOfLoop; i + 1 < vertices.size(); ++i) {
    if (!pending.isNamedByAnother(winner.node, vertices[i].spot.read)) return vertices[i].spot;
  }
  return std::nullopt;
}

}  // namespace

Enclosure enclosedBy(const Player& winner, std::map<ClientId, Player>& players, const PendingCaptures& pending) {
  std::vector<Player*> others;
  std::vector<GridPoint> points;
  for (auto& [client, other] : players) {
    if (&other == &winner || !other.isAlive) continue;
    others.push_back(&other);
    points.push_back(other.spot.grid);
  }
  const auto loops = enclosingLoops(winner.tail.points(), points);
  Enclosure enclosure;
  std::optional<std::size_t> longest;
  for (std::size_t i = 0; i < others.size(); ++i) {
    if (!loops[i]) continue;
    enclosure.losers.push_back(others[i]);
    if (!longest || *loops[i] < *longest) longest = loops[i];
  }
  if (longest) enclosure.vertex = chooseVertex(winner, *longest, pending);
  return enclosure;
}

}  // namespace kelvora::server
