#include "server/bots/sight.h"

#include <algorithm>
#include <utility>

#include "base/search.h"
#include "server/arena/plane.h"

namespace kelvora::server {

namespace {

constexpr std::size_t stretch = 3;  // snapshots used to measure a velocity
constexpr std::size_t maxPictures = 24;
constexpr Millis chargeLasts = 2'200;
constexpr double maxTurnRate = 0.02;  // radians per ms
constexpr double minSpeed = 2;        // world units per ms, below which no turn is measured

}  // namespace

void Sight::add(std::vector<PlayerView> players, Millis now) {
  std::erase_if(charged_, [&](const auto& entry) { return now - entry.second > chargeLasts; });
  for (const PlayerView& player : players) {
    if (player.isRunning[chargedTailSlot]) charged_[player.node] = now;
  }
  pictures_.push_front(std::move(players));
  if (pictures_.size() > maxPictures) pictures_.pop_back();
}

void Sight::clear() {
  pictures_.clear();
  charged_.clear();
}

const PlayerView* Sight::player(ClientId client) const {
  return pictures_.empty() ? nullptr : findBy(pictures_.front(), &PlayerView::client, client);
}

const PlayerView* Sight::findNode(std::size_t picture, std::int16_t node) const {
  return findBy(pictures_[picture], &PlayerView::node, node);
}

BotView Sight::viewOf(const PlayerView& self, Millis delay, Millis now) const {
  BotView view{.now = now,
               .isAlive = self.isAlive,
               .position = self.position,
               .tail = self.tail,
               .isRunning = self.isRunning,
               .stock = self.stock,
               .funds = self.funds,
               .others = {}};
  const std::size_t late = std::min(static_cast<std::size_t>(delay / step), pictures_.size() - 1);
  view.delay = static_cast<Millis>(late) * step;
  for (const PlayerView& player : pictures_[late]) {
    // Skips players who have left since.
    if (player.node == self.node || !findNode(0, player.node)) continue;
    Seen seen{.node = player.node,
              .isAlive = player.isAlive,
              .position = player.position,
              .velocity = {},
              .tail = player.tail,
              .isTailCharged = charged_.contains(player.node),
              .isRunning = player.isRunning};
    if (late + 2 * stretch < pictures_.size()) {
      const PlayerView* before = findNode(late + stretch, player.node);
      const PlayerView* longBefore = findNode(late + 2 * stretch, player.node);
      constexpr double time = static_cast<double>(stretch) * static_cast<double>(step);
      if (before && longBefore) {
        const Point velocity = (player.position - before->position) * (1 / time);
        const Point earlierVelocity = (before->position - longBefore->position) * (1 / time);
        if (length(velocity) > minSpeed && length(earlierVelocity) > minSpeed) {
          seen.turn =
              std::clamp(wrapped(angleOf(velocity) - angleOf(earlierVelocity)) / time, -maxTurnRate, maxTurnRate);
        }
        // The measured velocity was that of half the stretch ago.
        seen.velocity = rotated(velocity, seen.turn * time / 2);
      }
    }
    view.others.push_back(seen);
  }
  return view;
}

}  // namespace kelvora::server
