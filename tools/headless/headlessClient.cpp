#include "tools/headless/headlessClient.h"

#include "audio/frmMusic.h"
#include "audio/frmSound.h"
#include "audio/soundMan.h"
#include "core/centreMessage.h"
#include "core/modMain.h"
#include "core/players.h"
#include "frontend/fontMan.h"
#include "frontend/frmConnect.h"
#include "frontend/frmFonts.h"
#include "frontend/frmGameFind.h"
#include "frontend/updateCheck.h"
#include "generated/sourceFolder.h"
#include "network/session.h"
#include "rendering/frmGfx.h"
#include "store/frmPowerups.h"

namespace kelvora {

HeadlessClient::HeadlessClient() {
  machine.path = KELVORA_SOURCE_DIR;
  installBackend(&machine);
  modMain::world = {};
  netMan::clear();
  updateCheck::clear();
  soundMan::clear();
  modMain::fillColourNames();
  modMain::fillTips();
  fontMan::initFonts();
  machine.journal.clear();
}

HeadlessClient::~HeadlessClient() {
  frmMusic.unload();
  frmSound.unload();
  frmGameFind.unload();
  frmConnect.unload();
  frmFonts.unload();
  frmPowerups.unload();
  frmMain.unload();
  frmGfx.unload();
  releaseUnloadedForms();
  installBackend(nullptr);
}

}  // namespace kelvora
