#include <cstddef>

#include "base/numbers.h"
#include "base/text.h"
#include "core/modMain.h"
#include "core/timeScale.h"
#include "frontend/frmMain.h"
#include "rendering/frmGfx.h"
#include "rendering/layers.h"
#include "rendering/paintFrame.h"
#include "rendering/sprites.h"
#include "simulation/clsPlayer.h"

namespace kelvora {

namespace {

constexpr float leftMargin = 60;
constexpr float lineSpacing = 400;
constexpr std::size_t paintedLines = 7;
constexpr int darkeningPerLine = 30;
constexpr std::int16_t minSize = 9;
constexpr int oldestMessage = 250;
constexpr std::uint8_t unsetGrey = 50;

std::uint8_t darkened(std::uint8_t channel, int amount) {
  // Quirk Q-136: a channel at or below the amount keeps its value, so no line turns black.
  return static_cast<std::uint8_t>(channel > amount ? channel - amount : channel);
}

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

void printAt(PictureBox& canvas, float x, float y, Colour colour, const std::string& text) {
  canvas.CurrentX = x;
  canvas.CurrentY = y;
  canvas.ForeColor = colour;
  canvas.Print(text);
}

}  // namespace

namespace modMain {

void paintTextLines() {
  PictureBox& canvas = frmMain->canvas;
  float y = canvas.Height;
  const std::int16_t ownSize = toInt16(canvas.FontSize);
  for (std::size_t i = 0; i < paintedLines; ++i) {
    const ChatLine& line = world.chatLines[i];
    Colour colour = line.colour;
    // Quirk Q-264: black means a line that was never filled, so a font set to black is painted grey as well.
    if (colour == Colour{}) colour = {unsetGrey, unsetGrey, unsetGrey};
    const int amount = static_cast<int>(i) * darkeningPerLine;
    colour = {darkened(colour.red, amount), darkened(colour.green, amount), darkened(colour.blue, amount)};
    y -= lineSpacing;
    canvas.FontSize = line.size < minSize ? minSize : line.size;
    printAt(canvas, leftMargin, y, colour, line.text);
  }
  canvas.FontSize = ownSize;
  printAt(canvas, leftMargin, 0, RGB(0, 255, 255), world.debugText);
}

void paintCentreMessage() {
  if (world.centreMessageAge > oldestMessage) return;
  const double timeScale = getTimeScale();
  world.centreMessageAge =
      toInt16(timeScale >= 1 ? roundToEven(world.centreMessageAge + timeScale) : world.centreMessageAge + 1);
  if (world.centreMessageAge > oldestMessage) return;
  PictureBox& canvas = frmMain->canvas;
  Label& measure = frmMain->lblTmp;
  const float y = canvas.Height / 2 - 500;
  const float centre = canvas.Width / 2;
  // Quirk Q-134: the width is measured in the label's small font, and the divisor is 2.3 instead of 2, so the text is
  // left of the centre.
  if (!(measure.Caption == world.centreMessage)) {
    measure.Caption = world.centreMessage;
    measure.Width = Surface::textWidth(measure.design.font, world.centreMessage);
  }
  const float x = static_cast<float>((centre - measure.Width + centre) / 2.3);
  const float ownSize = canvas.FontSize;
  canvas.FontSize = ownSize + 3;
  printAt(canvas, x, y, RGB(0, 255 - world.centreMessageAge, 0), world.centreMessage);
  canvas.FontSize = ownSize;
}

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
  PictureBox& canvas = frmMain->canvas;
  auto& icons = frmGfx->imgAction;
  const float width = icons[0].Width;
  const float height = icons[0].Height;
  const float left = canvas.Width - (width + 50) * static_cast<float>(icons.UBound);
  float x = left;
  for (const PowerupState& powerup : powerups) {
    printAt(canvas, x, canvas.Height - (height + 150), RGB(0, 255, 255), numberText(std::int32_t{powerup.count}));
    x += width + 25;
  }
}

}  // namespace kelvora
