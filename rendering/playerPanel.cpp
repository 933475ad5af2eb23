// The main window's panels for players: captures, kills, credits and lag.

#include "rendering/playerPanel.h"

#include "base/text.h"
#include "frontend/frmMain.h"
#include "rendering/frmGfx.h"
#include "simulation/clsPlayer.h"

namespace kelvora {

void clsPlayer::displayCapture(PlayerColour victimColour) {
  const SheetImage& sheet = frmGfx->imgCaps;
  const float width = sheet.Width / 6;
  const float left = static_cast<float>(victimColour) * width;
  PictureBox& strip = frmMain->picCaps[colour];
  strip.PaintPicture(sheet.cells(), left, 0, width, sheet.Height, left, 0, SRCCOPY);
  strip.Refresh();
}

void clsPlayer::clearCaptureStrip() {
  PictureBox& strip = frmMain->picCaps[colour];
  strip.Cls();
  strip.Refresh();
}

void clsPlayer::displayKills() { frmMain->lblKills[colour].Caption = numberText(std::int32_t{kills}); }

void clsPlayer::displayFunds() { frmMain->lblCredits.Caption = numberText(funds_); }

void clsPlayer::displayLag() { frmMain->lblLag.Caption = numberText(lag) + "/" + numberText(reportedLag); }

void modMain::setButtonsState(bool enabled) {
  // Quirk Q-037: a grey button only looks grey. It still takes clicks.
  const int face = enabled ? 1 : 0;
  frmMain->btnSpawn.setPicture(frmGfx->imgBtnPlay[face].Picture);
  frmMain->btnShop.setPicture(frmGfx->imgBtnStore[face].Picture);
}

}  // namespace kelvora
