#include "platform/win32/messageWindow.h"

#include <algorithm>
#include <vector>

#include "platform/win32/gdiFonts.h"
#include "platform/win32/textLines.h"
#include "platform/win32/wideText.h"
#include "raster/twips.h"

namespace kelvora {

namespace {

// Twips.
constexpr float margin = 240;
constexpr float buttonWidth = 1125;
constexpr float buttonHeight = 375;

}  // namespace

MessageWindow::Size MessageWindow::measure(const std::string& text) {
  constexpr int lineWidth = 480;  // pixels; a longer word widens the box
  constexpr int minWidth = 160;
  const FontMeasure measure(gdiFont(FontSpec{}, 1));
  const std::vector<MeasuredLine> lines = textLines(measure.dc(), toWide(text), lineWidth);
  const int height = measure.lineHeight() * static_cast<int>(lines.size());
  const int slack = 8;  // for other scales, whose letters aren't exact multiples
  return {static_cast<float>(std::max(widest(lines) + slack, minWidth) * twipsPerPixel),
          static_cast<float>((height + slack) * twipsPerPixel)};
}

MessageWindow::MessageWindow(const std::string& text) : MessageWindow(text, measure(text)) {}

MessageWindow::MessageWindow(const std::string& text, Size size)
    : Form("Kelvora", {.clientWidth = size.width + 2 * margin,
                       .clientHeight = size.height + buttonHeight + 3 * margin,
                       .border = Border::Fixed,
                       .systemColours = true}),
      text_(this, {margin, margin, size.width, size.height}, text, {.systemColours = true}),
      close_(this, {margin + (size.width - buttonWidth) / 2, size.height + 2 * margin, buttonWidth, buttonHeight}, "OK",
             Button::Role::Default) {
  close_.TabIndex = 0;
  close_.Click = [this] { Hide(); };
  close_.KeyDown = [this](int KeyCode, int) {
    if (KeyCode == keyEscape) Hide();
  };
  unload = [this] { Hide(); };
}

}  // namespace kelvora
