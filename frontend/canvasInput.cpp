#include "base/numbers.h"
#include "core/input.h"
#include "frontend/frmMain.h"
#include "platform/backend.h"
#include "protocol/powerupTable.h"

namespace kelvora {

namespace {

constexpr float edge = 30;  // canvas units from the canvas's border within which the pointer is pushed back
// Quirk Q-224: one number, two units: 2 pixels from an edge, the pointer is pushed 30 pixels.
constexpr std::int32_t push = 30;  // pixels

// The window's design size: its width in pixels and in twips, and the height of title and menu in pixels.
constexpr double designPixels = 916;
constexpr double designTwips = 13605;
constexpr double designBars = 45;

}  // namespace

void FrmMain::canvasKeyDown(int KeyCode) {
  if (keyF1 <= KeyCode && KeyCode < keyF1 + powerupSlotCount) {
    modMain::requestPowerup(static_cast<std::int16_t>(KeyCode - keyF1 + 1));
  }
}

void FrmMain::canvasKeyPress(int KeyAscii) {
  txtChat.SetFocus();
  // Quirk Q-226: appends to the line, wherever the caret is.
  txtChat.Text = txtChat.Text.get() + static_cast<char>(KeyAscii);
  txtChat.SelStart = static_cast<int>(txtChat.Text.get().size());
}

void FrmMain::canvasMouseDown(int Button) {
  if (Button == rightButton) modMain::toggleLocalBreaks();
}

void FrmMain::canvasMouseMove(int Button, float X, float Y) {
  isLockMouse_ = Button == leftButton;
  if (isLockMouse_) confinePointer(X, Y);
  // Quirk Q-223: the event's position, not the pushed one, which arrives with the next event.
  modMain::setMousePos(X, Y);
}

void FrmMain::confinePointer(float X, float Y) {
  // Quirk Q-034: the conversion to screen pixels assumes the design window, whatever the window and its frame are now.
  // Quirk Q-238: the position is rounded twice, to whole twips and to whole pixels.
  std::int32_t sx = toInt32(static_cast<double>(canvas.Left) + Left + X);
  std::int32_t sy = toInt32(static_cast<double>(canvas.Top) + Top + Y);
  sx = toInt32(sx * designPixels / designTwips);
  sy = toInt32(sy * designPixels / designTwips + designBars);

  // Quirk Q-035: each edge moves the pointer separately, so a corner moves it twice.
  if (X < edge) {
    sx += push;
    SetCursorPos(sx, sy);
  }
  if (canvas.Width - edge < X) {
    sx -= push;
    SetCursorPos(sx, sy);
  }
  if (Y < edge) {
    sy += push;
    SetCursorPos(sx, sy);
  }
  if (canvas.Height - edge < Y) {
    sy -= push;
    SetCursorPos(sx, sy);
  }
}

}  // namespace kelvora
