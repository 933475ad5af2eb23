#include <cstddef>

#include "base/numbers.h"
#include "core/modMain.h"
#include "core/timeScale.h"
#include "frontend/frmMain.h"
#include "rendering/layers.h"

namespace kelvora::modMain {

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

}  // namespace

void printOnCanvas(float x, float y, Colour colour, const std::string& text) {
  PictureBox& canvas = frmMain->canvas;
  canvas.CurrentX = x;
  canvas.CurrentY = y;
  canvas.ForeColor = colour;
  canvas.Print(text);
}

void addDebugText(const std::string& line) {
  world.debugText += line;
  world.debugText += "\r\n";
}

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
    printOnCanvas(leftMargin, y, colour, line.text);
  }
  canvas.FontSize = ownSize;
  printOnCanvas(leftMargin, 0, RGB(0, 255, 255), world.debugText);
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
  printOnCanvas(x, y, RGB(0, 255 - world.centreMessageAge, 0), world.centreMessage);
  canvas.FontSize = ownSize;
}

}  // namespace kelvora::modMain
