#include "audio/frmMusic.h"

#include "audio/soundMan.h"
#include "base/fault.h"
#include "platform/backend.h"

namespace kelvora {

FormSlot<FrmMusic> frmMusic;

FrmMusic::FrmMusic() : Form("Music Control", {.clientWidth = 4470, .clientHeight = 645, .systemColours = true}) {
  // Quirk Q-271: only startMusic starts the timer. A track requested after an unload loads this form again, and no
  // other follows it.
  tmrNext.Enabled = false;
  tmrNext.Timer = [this] { tmrNext_Timer(); };
}

/// The timer must run even though the window isn't shown.
void FrmMusic::load() { backend().realize(*this); }

void FrmMusic::unloaded() {
  resumeNext([this] { tmrNext.Enabled = false; });
  resumeNext([this] { player.URL(""); });
}

void FrmMusic::tmrNext_Timer() {
  if (player.playState() == psStopped || player.playState() == psReady) soundMan::nextMusic();
}

}  // namespace kelvora
