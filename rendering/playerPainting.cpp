#include <algorithm>
#include <cmath>

#include "base/numbers.h"
#include "base/text.h"
#include "core/players.h"
#include "core/timeScale.h"
#include "core/view.h"
#include "frontend/frmMain.h"
#include "protocol/rules.h"
#include "rendering/frmGfx.h"
#include "rendering/layers.h"
#include "rendering/sprites.h"
#include "simulation/clsPlayer.h"
#include "simulation/survival.h"

namespace kelvora {

namespace {

constexpr std::int16_t lastBallCell = 3;

bool isOutside(Vector point, const PictureBox& canvas) {
  return point.x < 0 || point.y < 0 || point.x > canvas.Width || point.y > canvas.Height;
}

}  // namespace

void clsPlayer::paintSelf() {
  FrmMain& form = *frmMain;
  paintTail();
  paintRadarBlip();
  if (powerups[laserSlot].active) paintLaser();

  Vector place;
  if (playerIndex == localIndex) {
    place = modMain::getCanvasCentre();
    if (modMain::isSurvivalMode()) modMain::paintSurvival();
  } else {
    place = modMain::worldToScreen(position);
    // Quirk Q-242: off screen, the ball's animation stops.
    if (isOutside(place, form.canvas)) {
      paintOffscreenArrow();
      return;
    }
  }
  paintBall(place);
  advanceAnimation();

  if (playerIndex != localIndex) return;
  modMain::addDebugText("Location: " + formatThousands(position.x / 1000.0) + "   " +
                        formatThousands(position.y / 1000.0));
  if (breaksOn) modMain::addDebugText("Breaks on, right-click to release");
  paintPowerupCounts();
}

float clsPlayer::getWidth() const { return std::floor(frmGfx->imgPlayer[0].Width / 4); }

void clsPlayer::paintBall(Vector centre) {
  PictureBox& canvas = frmMain->canvas;
  const SheetImage& ball = frmGfx->imgPlayer[colour];
  const SheetImage& matte = frmGfx->imgPlayerMatte;
  const float width = std::floor(ball.Width / 4);
  const float height = ball.Height;
  const Place place{centre.x - std::floor(width / 2), centre.y - std::floor(height / 2), width, height};
  const float left = toInt16(static_cast<double>(width) * animFrame);
  if (!alive) {
    // Quirk Q-129: a ghost is a ball painted with swapped raster operations, without its shield.
    paintSprite(canvas, {matte, left, 0}, {ball, left, 0}, place, exchangedSprite);
    return;
  }
  paintSprite(canvas, {matte, left, 0}, {ball, left, 0}, place);
  if (!powerups[shieldSlot].active) return;
  // Quirk Q-133: the shield's cell size and matte row are measured on the ball's sheet.
  const SheetImage& shield = frmGfx->imgShield;
  paintSprite(canvas, {shield, left, height}, {shield, left, 0}, place);
}

void clsPlayer::advanceAnimation() {
  animTick = static_cast<std::int16_t>(animTick + 1);
  const double framesPerCell = std::max(10.0 / modMain::getTimeScale(), 1.0);
  if (animTick < framesPerCell) return;
  animTick = 0;
  animFrame = static_cast<std::int16_t>(animFalling ? animFrame - 1 : animFrame + 1);
  // Quirk Q-244: reversing takes an extra step, so the first and the last cell show twice.
  if (animFrame > lastBallCell) {
    animFalling = true;
    animFrame = lastBallCell;
  } else if (animFrame < 0) {
    animFalling = false;
    animFrame = 0;
  }
}

void clsPlayer::paintRadarBlip() {
  PictureBox& radar = frmMain->picRadar;
  const SheetImage& blips = frmGfx->imgRadarBlips;
  const float x = static_cast<float>(std::floor(static_cast<double>(radar.Width) * position.x / rules::worldSize));
  const float y = static_cast<float>(std::floor(static_cast<double>(radar.Height) * position.y / rules::worldSize));
  const float width = blips.Width / 7;
  const float height = blips.Height;
  if (playerIndex == localIndex) {
    radar.ForeColor = RGB(128, 128, 128);
    radar.DrawWidth = 1;
    radar.Line(x, 0, x, radar.Height);
    radar.Line(0, y, radar.Width, y);
  }
  if (!alive) return;
  paintSprite(radar, {blips, width * 6, 0}, {blips, static_cast<float>(colour) * width, 0},
              {x - std::floor(width / 2), y - std::floor(height / 2), width, height});
}

void clsPlayer::paintOffscreenArrow() {
  if (!alive) return;
  PictureBox& canvas = frmMain->canvas;
  const SheetImage& matte = frmGfx->imgOpponentArrowMatte;
  const Vector place = modMain::worldToScreen(position);
  const float width = matte.Width / 8;
  const float height = matte.Height;
  // Rows: above, level, below. Columns: left, level, right.
  static constexpr int frames[3][3] = {{4, 0, 5}, {3, -1, 1}, {6, 2, 7}};
  const int column = place.x < 0 ? 0 : place.x > canvas.Width ? 2 : 1;
  const int row = place.y < 0 ? 0 : place.y > canvas.Height ? 2 : 1;
  const int frame = frames[row][column];
  if (frame < 0) return;
  // Quirk Q-138: along an edge the arrow's corner, not its middle, follows the opponent.
  const float lefts[] = {0, place.x, canvas.Width - width};
  const float tops[] = {0, place.y, canvas.Height - height};
  const float cell = static_cast<float>(frame) * width;
  paintSprite(canvas, {matte, cell, 0}, {frmGfx->imgOpponentArrow[colour], cell, 0},
              {lefts[column], tops[row], width, height});
}

}  // namespace kelvora
