#include "app/player/marks.h"

#include <algorithm>
#include <cstddef>

#include "core/modMain.h"

namespace kelvora::player {

using modMain::world;

std::vector<Mark> MarkFinder::find(Millis now) {
  std::vector<Mark> found;
  findCaptures(found, now);
  findLines(found, now);
  return found;
}

void MarkFinder::findCaptures(std::vector<Mark>& found, Millis now) {
  std::vector<const clsPlayer*> players{&world.localPlayer};
  for (const clsPlayer& opponent : world.opponents) players.push_back(&opponent);
  players_.resize(players.size());
  bool isCapture = false;
  bool isOwn = false;
  for (std::size_t i = 0; i < players.size(); ++i) {
    const clsPlayer& player = *players[i];
    const Player before = players_[i];
    players_[i] = {player.isConnected && player.alive, player.isConnected ? player.kills : 0};
    if (!player.isConnected) continue;
    if (!before.isAlive || (players_[i].isAlive && players_[i].kills <= before.kills)) continue;
    isCapture = true;
    isOwn = isOwn || i == 0;
  }
  if (isCapture) found.push_back({now, Mark::Kind::Capture, isOwn, {}});
}

void MarkFinder::findLines(std::vector<Mark>& found, Millis now) {
  const auto& lines = world.chatLines;  // newest first
  const auto isShiftedBy = [&](std::size_t count) {
    for (std::size_t i = count; i < lines.size(); ++i) {
      if (lines[i].text != lines_[i - count]) return false;
    }
    return true;
  };
  std::size_t count = 0;
  while (!isShiftedBy(count)) ++count;
  for (std::size_t i = count; i > 0; --i) {
    if (!lines[i - 1].text.empty()) found.push_back({now, Mark::Kind::Line, false, lines[i - 1].text});
  }
  std::transform(lines.begin(), lines.end(), lines_.begin(), [](const ChatLine& line) { return line.text; });
}

}  // namespace kelvora::player
