#include "core/startUp.h"

#include "audio/soundMan.h"
#include "core/centreMessage.h"
#include "core/mainLoop.h"
#include "core/players.h"
#include "frontend/fontMan.h"
#include "frontend/frmConnect.h"
#include "frontend/frmMain.h"
#include "frontend/updateCheck.h"
#include "platform/backend.h"
#include "rendering/playerPanel.h"
#include "rendering/startLogo.h"

namespace kelvora::modMain {

void startGame() {
  FrmMain& window = *frmMain;
  window.Caption = window.Caption.get() + " v" + appVersionText();
  Randomize(Timer());
  fillColourNames();
  fillTips();
  if (!soundMan::isOnCommandLine("nosound")) soundMan::initAudio();
  if (!soundMan::isOnCommandLine("nomusic")) {
    soundMan::startMusic();
    soundMan::nextMusic();
  }
  fontMan::initFonts();
  window.Show();
  window.showConnectionState();
  setButtonsState(false);
  if (window.mnuUpdates.Checked) updateCheck::checkForUpdates();
  showStartLogo();
  frmConnect->Show();
  mainLoop();
}

}  // namespace kelvora::modMain
