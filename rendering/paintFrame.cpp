#include "rendering/paintFrame.h"

#include <algorithm>
#include <cstddef>

#include "base/numbers.h"
#include "base/text.h"
#include "core/modMain.h"
#include "core/players.h"
#include "frontend/frmMain.h"
#include "rendering/actionIcons.h"
#include "rendering/layers.h"
#include "rendering/pointer.h"
#include "simulation/clsPlayer.h"

namespace kelvora::modMain {

namespace {

/// Paints a pool whose particles may be removed while they are painted.
template <class Pool, class Count>
void paintPool(Pool& pool, const Count& count) {
  const Count last = count;
  for (Count i = 0; i < last; ++i) {
    // Quirk Q-123: if a particle is removed by its own paint, the next one takes its place and is skipped in this
    // frame.
    if (i < count) pool[static_cast<std::size_t>(i)].paintSelf();
  }
}

/// Records the newest paint time in ms and returns the new average.
std::int32_t averageFrameTime(std::int32_t newest) {
  std::copy_backward(world.frameTimes.begin(), world.frameTimes.end() - 1, world.frameTimes.end());
  world.frameTimes[0] = newest;
  double sum = 0;
  for (const std::int32_t time : world.frameTimes) sum += time;
  return toInt32(sum / 101.0);
}

}  // namespace

// The painting order is the order of the layers, lowest first.
void paintFrame() {
  PictureBox& canvas = frmMain->canvas;
  PictureBox& radar = frmMain->picRadar;
  canvas.Cls();
  radar.Cls();
  world.debugText.clear();
  const Millis begin = GetTickCount();

  if (world.localPlayer.isConnected && !world.localPlayer.isAlive()) world.localPlayer.paintSelf();
  paintPool(world.particles, world.particleCount);
  paintPool(world.spareParticles, world.spareParticleCount);
  paintPool(world.explosionParticles, world.explosionCount);
  paintPool(world.netParticles, world.netParticleCount);
  for (std::int16_t i = 0; i < world.opponentCount; ++i) {
    clsPlayer& opponent = playerAt(i);
    if (opponent.isConnected) opponent.paintSelf();
  }
  paintWorldBorder();
  paintActionIcons();
  paintPointer();
  if (world.localPlayer.isConnected && world.localPlayer.isAlive()) world.localPlayer.paintSelf();

  const std::int32_t average = averageFrameTime(toInt32(static_cast<double>(GetTickCount() - begin)));
  // Quirk Q-126: shows the average before this frame.
  addDebugText("Paint Time:" + formatThreeDigits(world.frameTime));
  paintTextLines();
  paintCentreMessage();
  canvas.Refresh();
  radar.Refresh();
  // Quirk Q-139: the measured time excludes the texts and presenting the picture, but determines the time scale.
  world.frameTime = average;
}

}  // namespace kelvora::modMain
