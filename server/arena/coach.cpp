#include "server/arena/coach.h"

#include <array>
#include <cmath>
#include <limits>

namespace kelvora::server {

namespace {

/// Notes a lesson. True if it is new.
bool begins(Lessons& lessons, Lesson lesson) {
  const auto bit = 1U << static_cast<unsigned>(lesson);
  const bool isNew = (lessons.given & bit) == 0;
  lessons.given |= bit;
  return isNew;
}

bool isGiven(const Lessons& lessons, Lesson lesson) {
  return (lessons.given >> static_cast<unsigned>(lesson) & 1U) != 0;
}

}  // namespace

std::string directionOf(Point way) {
  constexpr std::array names = {"to your right", "below you to the right", "below you", "below you to the left",
                                "to your left",  "above you to the left",  "above you", "above you to the right"};
  const auto eighth = static_cast<int>(std::lround(angleOf(way) / (pi / 4)));
  return names[static_cast<std::size_t>((eighth + 8) % 8)];
}

void Coach::tick(Millis now) {
  if (!rules_.coach) return;
  for (auto& [client, player] : roster_.players()) {
    Lessons& lessons = player.lessons;
    if (isBot(client) || now < lessons.nextAt) continue;
    // People who know how to capture need no coach.
    const bool isExpert = player.lastCapture > 0 && !isGiven(lessons, Lesson::circle);
    if (isExpert) lessons.nextAt = std::numeric_limits<Millis>::max();
    if (isExpert || !rounds_.isRunning()) continue;
    const std::string line = lineFor(player, now);
    if (line.empty()) continue;
    roster_.tell(client, line);
    lessons.nextAt = now + pause;
  }
}

std::string Coach::lineFor(Player& player, Millis now) const {
  Lessons& lessons = player.lessons;
  if (!player.isAlive) {
    if (lessons.wasAlive && begins(lessons, Lesson::spawn)) {
      return "You are out, and fly on as a ghost until you press Spawn.";
    }
    return {};
  }
  lessons.wasAlive = true;
  const bool hasMoved = player.heading.has_value();
  if (!hasMoved && now - player.joined >= brakesAfter && begins(lessons, Lesson::brakes)) {
    return "Your brakes are on. Press the right mouse button, or Brakes on a touch screen, and steer.";
  }
  if (player.lastCapture > 0 && begins(lessons, Lesson::capture)) {
    return "Well done! " + captureText();
  }
  if (player.inventory.funds() >= storeFunds && begins(lessons, Lesson::store)) {
    return "You have " + std::to_string(player.inventory.funds()) +
           " credits. Press Store to buy a powerup, and F1 to F6 to use it.";
  }
  const Player* opponent = hasMoved ? nearestOpponent(player) : nullptr;
  if (opponent == nullptr) return {};
  const Point way = opponent->spot.point() - player.spot.point();
  const std::string name = opponent->name + " (" + rules::colourNames[static_cast<std::size_t>(opponent->colour)] + ")";
  if (begins(lessons, Lesson::opponents)) return name + " is the nearest player, " + directionOf(way) + ".";
  if (length(way) <= nearby && begins(lessons, Lesson::circle)) {
    return "Circle " + name + " and cross your own tail to capture them.";
  }
  return {};
}

std::string Coach::captureText() const {
  std::string text;
  if (rules_.captureCredits > 0) text += "A capture earns " + std::to_string(rules_.captureCredits) + " credits. ";
  if (rules_.captureGoal > 0) {
    text += std::to_string(rules_.captureGoal) + " captures win the round.";
  } else {
    text += "The most captures win the round.";
  }
  return text;
}

const Player* Coach::nearestOpponent(const Player& player) const {
  const Player* nearest = nullptr;
  const auto distance = [&](const Player& other) { return length(other.spot.point() - player.spot.point()); };
  for (const auto& [client, other] : roster_.players()) {
    if (&other == &player || !other.isAlive) continue;
    if (nearest == nullptr || distance(other) < distance(*nearest)) nearest = &other;
  }
  return nearest;
}

}  // namespace kelvora::server
