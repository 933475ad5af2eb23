#include <algorithm>
#include <cmath>

#include "base/fault.h"
#include "base/numbers.h"
#include "core/glide.h"
#include "core/modMain.h"
#include "core/view.h"
#include "frontend/frmMain.h"
#include "particles/clsParticle.h"
#include "particles/pools.h"
#include "rendering/frmGfx.h"
#include "rendering/sprites.h"
#include "rendering/starsMode.h"

namespace kelvora {

namespace {

constexpr double pullPerDepth = 0.05;
constexpr int dimmingPerDepth = 10;
constexpr int starBrightness = 200;
constexpr int maxRadius = 30;  // twips
constexpr std::int16_t explosionPaints = 10;

/// A coordinate pulled towards the canvas's centre; deeper particles are pulled more.
float pulled(float coordinate, float extent, std::int16_t depth) {
  return static_cast<float>(depth * pullPerDepth * (extent / 2 - coordinate) + coordinate);
}

}  // namespace

Vector clsParticle::getScreenPosition() const { return modMain::worldToScreen(position); }

void clsParticle::paintSelf() {
  if (type == ParticleType::Explosion && isWaiting()) return;
  PictureBox& canvas = frmMain->canvas;
  Vector place = getScreenPosition();
  const bool isBackground = type == ParticleType::Background;
  if (isBackground) {
    if (!modMain::isInWorld(position)) return;
    place = {pulled(place.x, canvas.Width, depth), pulled(place.y, canvas.Height, depth)};
  }
  if (place.y < 0 || place.y > canvas.Height || place.x < 0 || place.x > canvas.Width) return;
  if (isBackground) {
    paintBackground(place);
  } else if (type == ParticleType::Network) {
    paintSpriteAt(place, false);
  } else if (type == ParticleType::Explosion) {
    paintSpriteAt(place, !blink);
  }
}

bool clsParticle::isWaiting() {
  blink = !blink;
  // Quirk Q-119: the second of the last count is never stored and stays 0. So the particle is counted and not drawn,
  // except in the half second around midnight, and is removed at its eleventh paint.
  constexpr std::int32_t lastSecond = 0;
  if (toInt32(Timer()) - lastSecond <= 0) return false;
  age = toInt16(age + 1);
  if (age > explosionPaints) modMain::removeExplosionParticle(toInt16(num_));  // another particle may be here now
  return true;
}

void clsParticle::paintBackground(Vector place) const {
  const int dimming = depth * dimmingPerDepth;
  Colour colour;
  if (modMain::isStarsMode()) {
    const int grey = starBrightness - dimming;
    if (grey < 0) raiseOverflow();
    colour = RGB(grey, grey, grey);
  } else {
    colour = RGB(std::max(red - dimming, 0), std::max(green - dimming, 0), std::max(blue - dimming, 0));
  }
  PictureBox& canvas = frmMain->canvas;
  canvas.FillColor = colour;
  canvas.Circle(place.x, place.y, static_cast<float>(maxRadius - depth), colour);
}

void clsParticle::paintSpriteAt(Vector place, bool exchanged) const {
  const SheetImage& balls = frmGfx->imgBalls;
  const float width = std::floor(balls.Width / 11);
  const float height = std::floor(balls.Height);
  // Quirk Q-124: the sprite is anchored at its lower right corner, so a ball is drawn above and to the left of its
  // position.
  paintSprite(frmMain->canvas, {frmGfx->imgBallMatte, 0, 0}, {balls, static_cast<float>(kind) * width, 0},
              {place.x - width, place.y - height, width, height}, exchanged ? exchangedSprite : normalSprite);
}

}  // namespace kelvora
