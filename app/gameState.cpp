#include "app/gameState.h"

#include <span>

#include "core/modMain.h"
#include "frontend/frmMain.h"

namespace kelvora {

namespace {

using modMain::world;
using recording::Sum;

std::uint64_t sumOf(const Surface& surface) {
  Sum sum;
  sum.add(std::uint64_t{static_cast<std::uint32_t>(surface.pixelWidth())});
  sum.add(surface.pixels().data(), surface.pixels().size());
  return sum.value();
}

void add(Sum& sum, Vector vector) {
  sum.add(vector.x);
  sum.add(vector.y);
}

void add(Sum& sum, const clsPlayer& player) {
  add(sum, player.position);
  add(sum, player.velocity);
  sum.add(std::uint64_t{player.alive});
  sum.add(std::uint64_t{player.isConnected});
  sum.add(std::uint64_t{player.captures.size()});
  sum.add(static_cast<float>(player.kills));
  for (const PowerupState& powerup : player.powerups) {
    sum.add(static_cast<float>(powerup.count));
    sum.add(static_cast<float>(powerup.timeLeft));
  }
}

template <class Add>
std::uint64_t sumBy(const Add& add) {
  Sum sum;
  add(sum);
  return sum.value();
}

}  // namespace

std::vector<recording::StatePart> gameState() {
  std::uint64_t captures = 0;
  for (PictureBox& row : frmMain->picCaps) captures ^= sumOf(row);
  return {
      {"the canvas", sumOf(frmMain->canvas)},
      {"the radar", sumOf(frmMain->picRadar)},
      {"the rows of captures", captures},
      {"the local player", sumBy([](Sum& sum) { add(sum, world.localPlayer); })},
      {"the opponents", sumBy([](Sum& sum) {
         for (const clsPlayer& opponent : world.opponents) add(sum, opponent);
       })},
      {"the tails", sumBy([](Sum& sum) {
         sum.add(std::uint64_t{world.localPlayer.tails.size()});
         for (const clsPlayer& opponent : world.opponents) sum.add(std::uint64_t{opponent.tails.size()});
       })},
      {"the captures", sumBy([](Sum& sum) {
         sum.add(std::uint64_t{world.killerTails.size()});
         for (const KillerTail& capture : world.killerTails) sum.add(capture.tailID);
       })},
      {"the texts", sumBy([](Sum& sum) {
         for (const ChatLine& line : world.chatLines) sum.add(line.text);
         sum.add(world.centreMessage);
         sum.add(frmMain->lblCredits.Caption.get());
       })},
  };
}

}  // namespace kelvora
