#include "audio/frmMusic.h"

#include "audio/soundMan.h"
#include "platform/backend.h"

namespace kelvora {

FormSlot<FrmMusic> frmMusic;

FrmMusic::FrmMusic() : Form("Music Control", {.clientWidth = 4470, .clientHeight = 645, .systemColours = true}) {
  tmrNext.Enabled = false;
  tmrNext.Timer = [this] { tmrNext_Timer(); };
}

/// The timer has to run though the window is not shown.
void FrmMusic::load() { backend().realize(*this); }

void FrmMusic::unloaded() {
  tmrNext.Enabled = false;
  player.URL("");
}

void FrmMusic::tmrNext_Timer() {
  if (player.playState() == psStopped || player.playState() == psReady) soundMan::nextMusic();
}

}  // namespace kelvora
