// The strip of the player's window: what it shows, and where it can be clicked.

#include <algorithm>
#include <cmath>
#include <string>

#include "app/clockText.h"
#include "app/player/frmPlayer.h"
#include "raster/surface.h"
#include "raster/twips.h"

namespace kelvora::player {

namespace {

constexpr Colour background = RGB(16, 18, 24);
constexpr Colour barColour = RGB(52, 58, 72);
constexpr Colour readyColour = RGB(74, 84, 106);
constexpr Colour playedColour = RGB(64, 148, 220);
constexpr Colour lightColour = RGB(232, 236, 244);
constexpr Colour dimColour = RGB(150, 158, 174);
constexpr Colour ownColour = RGB(255, 216, 72);
constexpr Colour captureColour = RGB(236, 112, 99);

// Pixels of the strip.
constexpr float barLeft = 10;
constexpr float barRight = 430;
constexpr float barTop = 18;
constexpr float barWidth = 8;
constexpr float buttonTop = 50;
constexpr float buttonSize = 9;
constexpr float backX = 24;
constexpr float playX = 54;
constexpr float stepX = 84;
constexpr float slowerX = 122;
constexpr float fasterX = 192;
constexpr float captureX = 222;
constexpr float endingTop = 72;

float twips(float pixels) { return pixels * static_cast<float>(twipsPerPixel); }

}  // namespace

void FrmPlayer::prepareStrip() {
  strip.BackColor = background;
  strip.TabIndex = 0;
  strip.MouseDown = [this](int, int, float x, float y) { click(x, y); };
  strip.MouseMove = [this](int button, int, float x, float) {
    if (isDragging_ && button != 0) jump(timeAt(x));
  };
  strip.MouseUp = [this](int, int, float, float) { isDragging_ = false; };
}

void FrmPlayer::click(float x, float y) {
  const float column = x / twips(1);
  const float row = y / twips(1);
  if (row < buttonTop - 2 * buttonSize) {
    isDragging_ = true;
    return jump(timeAt(x));
  }
  if (row > buttonTop + 2 * buttonSize) return;  // the line that tells the ending
  const auto hits = [column](float middle) { return std::abs(column - middle) < 15; };
  if (hits(backX)) jump(0);
  if (hits(playX)) playOrPause();
  if (hits(stepX)) step();
  if (hits(slowerX)) changeSpeed(-1);
  if (hits(fasterX)) changeSpeed(1);
  if (hits(captureX)) jumpToMark(Mark::Kind::Capture, 1);
}

float FrmPlayer::barX(Millis time) const {
  const Millis length = std::max<Millis>(playback_.length(), 1);
  const double share = std::clamp(static_cast<double>(time) / static_cast<double>(length), 0.0, 1.0);
  return twips(barLeft) + static_cast<float>(share) * twips(barRight - barLeft);
}

Millis FrmPlayer::timeAt(float x) const {
  const float share = std::clamp((x - twips(barLeft)) / twips(barRight - barLeft), 0.0F, 1.0F);
  return static_cast<Millis>(static_cast<double>(share) * static_cast<double>(playback_.length()));
}

std::string FrmPlayer::status() const {
  return clockText(playback_.time()) + " of " + clockText(playback_.length()) + ", frame " +
         std::to_string(playback_.frame());
}

void FrmPlayer::paint() {
  const std::string shown = status() + (isPlaying_ ? "p" : "-") + (playback_.isScouted() ? "s" : "-") +
                            std::to_string(speedStep_) + std::to_string(playback_.marks().size()) + playback_.ending();
  if (shown == painted_) return;
  painted_ = shown;
  strip.Cls();
  paintBar();
  paintButtons();
  strip.Refresh();
}

void FrmPlayer::paintBar() {
  const float y = twips(barTop);
  const auto stroke = [&](float from, float to, Colour colour) {
    strip.ForeColor = colour;
    strip.DrawWidth = static_cast<int>(barWidth);
    strip.Line(from, y, to, y);
  };
  stroke(barX(0), twips(barRight), playback_.isScouted() ? readyColour : barColour);
  stroke(barX(0), barX(playback_.time()), playedColour);
  strip.DrawWidth = 2;
  for (const bool isOwn : {false, true}) {
    for (const Mark& mark : playback_.marks()) {
      if (mark.kind != Mark::Kind::Capture || mark.isOwn != isOwn) continue;
      strip.ForeColor = isOwn ? ownColour : captureColour;
      strip.Line(barX(mark.time), y - twips(barWidth), barX(mark.time), y + twips(barWidth));
    }
  }
  strip.FillColor = lightColour;
  strip.Circle(barX(playback_.time()), y, twips(6), background);
}

void FrmPlayer::paintButtons() {
  const float y = twips(buttonTop);
  const float size = twips(buttonSize);
  strip.ForeColor = lightColour;
  strip.DrawWidth = 2;
  /// Points to the right for a positive width, and to the left for a negative one.
  const auto triangle = [&](float middle, float width) {
    const float left = twips(middle) - width / 2;
    for (float row = -size; row <= size; row += twips(1)) {
      strip.Line(left, y + row, left + width * (1 - std::abs(row) / size), y + row);
    }
  };
  const auto upright = [&](float x) { strip.Line(twips(x), y - size, twips(x), y + size); };
  strip.DrawWidth = 3;
  upright(backX - 8);
  strip.DrawWidth = 1;
  triangle(backX + 2, -size * 1.6F);
  if (isPlaying_) {
    strip.DrawWidth = 5;
    upright(playX - 5);
    upright(playX + 5);
  } else {
    strip.DrawWidth = 1;
    triangle(playX, size * 1.8F);
  }
  strip.DrawWidth = 1;
  triangle(stepX - 2, size * 1.6F);
  strip.DrawWidth = 3;
  upright(stepX + 8);

  const auto line = [&](float x1, float y1, float x2, float y2) {
    strip.Line(twips(x1), twips(y1), twips(x2), twips(y2));
  };
  strip.DrawWidth = 2;
  strip.ForeColor = dimColour;
  line(slowerX - 5, buttonTop, slowerX + 5, buttonTop);
  line(fasterX - 5, buttonTop, fasterX + 5, buttonTop);
  line(fasterX, buttonTop - 5, fasterX, buttonTop + 5);
  strip.ForeColor = captureColour;
  line(captureX + 8, buttonTop - 8, captureX + 8, buttonTop + 8);
  strip.DrawWidth = 1;
  triangle(captureX - 3, size * 1.4F);

  const auto print = [&](float x, float top, const std::string& text, Colour colour) {
    strip.ForeColor = colour;
    strip.CurrentX = x;
    strip.CurrentY = twips(top);
    strip.Print(text);
  };
  strip.FontSize = 10;
  FontSpec font = strip.Font;
  font.size = strip.FontSize;
  const std::string pace = speedText() + " x";
  const float textTop = buttonTop - 8;
  print(twips((slowerX + fasterX) / 2) - Surface::textWidth(font, pace) / 2, textTop, pace, lightColour);
  const std::string text = status();
  print(twips(barRight) - Surface::textWidth(font, text), textTop, text, dimColour);
  print(twips(barLeft), endingTop, playback_.ending(), ownColour);
}

}  // namespace kelvora::player
