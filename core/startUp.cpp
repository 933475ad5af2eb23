#include "audio/soundMan.h"
#include "core/modMain.h"
#include "frontend/fontMan.h"
#include "frontend/frmConnect.h"
#include "frontend/frmMain.h"
#include "frontend/updateCheck.h"
#include "platform/backend.h"

namespace kelvora::modMain {

void fillColourNames() { world.colourNames = {"Red", "Yellow", "Green", "Cyan", "Blue", "Purple"}; }

void fillTips() {
  // Quirk Q-032: twenty slots for six tips. Every slot has its turn, so fourteen times in a row there is nothing to
  // see.
  world.tips = {
      "Right-Click to release or engage breaks",
      "Hold down the mouse button to prevent mouse from leaving viewport",
      "Entrap your opponents in a loop of your tail",
      "Spend credits before respawning",
      "Use F-Keys to activate powerups",
      "Shields will not protect from a tail-loop capture",
  };
}

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
  window.setButtonsState(false);
  if (window.mnuUpdates.Checked) updateCheck::checkForUpdates();
  showStartLogo();
  frmConnect->Show();
  mainLoop();
}

}  // namespace kelvora::modMain
