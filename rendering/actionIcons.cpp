#include "rendering/actionIcons.h"

#include <cstddef>

#include "base/text.h"
#include "frontend/frmMain.h"
#include "rendering/frmGfx.h"
#include "rendering/layers.h"
#include "rendering/sprites.h"
#include "simulation/clsPlayer.h"

namespace kelvora {

namespace {

/// Calls `action` with the number, left and top of each powerup icon.
template <class Action>
void forEachActionIcon(Action&& action) {
  auto& icons = frmGfx->imgAction;
  const PictureBox& canvas = frmMain->canvas;
  const int count = icons.UBound;
  const float width = icons[0].Width;
  const float y = canvas.Height - 1500;
  // Quirk Q-135: the start allows for gaps of 50 but the step uses 25, so the row ends short of the right edge.
  float x = canvas.Width - static_cast<float>(count) * (width + 50);
  for (int i = 1; i <= count; ++i) {
    action(i, x, y);
    x += width + 25;
  }
}

}  // namespace

namespace modMain {

void paintActionIcons() {
  auto& icons = frmGfx->imgAction;
  forEachActionIcon([&](int i, float x, float y) {
    paintSprite(frmMain->canvas, {icons[0], 0, 0}, {icons[i], 0, 0}, {x, y, icons[0].Width, icons[0].Height});
  });
}

std::int16_t actionIconAt(float x, float y) {
  auto& icons = frmGfx->imgAction;
  std::int16_t found = 0;
  forEachActionIcon([&](int i, float left, float top) {
    const bool isInside = left <= x && x < left + icons[0].Width && top <= y && y < top + icons[0].Height;
    if (isInside) found = static_cast<std::int16_t>(i);
  });
  return found;
}

}  // namespace modMain

void clsPlayer::paintPowerupCounts() {
  const float y = frmMain->canvas.Height - (frmGfx->imgAction[0].Height + 150);
  forEachActionIcon([&](int i, float x, float) {
    const PowerupState& powerup = powerups[static_cast<std::size_t>(i - 1)];
    modMain::printOnCanvas(x, y, RGB(0, 255, 255), numberText(std::int32_t{powerup.count}));
  });
}

}  // namespace kelvora
