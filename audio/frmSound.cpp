#include "audio/frmSound.h"

#include "base/fault.h"

namespace kelvora {

FormSlot<FrmSound> frmSound;

FrmSound::FrmSound() : Form("Sound Manager", {.clientWidth = 4680, .clientHeight = 3195, .systemColours = true}) {
  loadDevice();
}

SoundDevice& FrmSound::mm(int slot) {
  if (slot < 0 || slot > lastIndex()) raiseSubscriptOutOfRange();
  return devices_[static_cast<std::size_t>(slot)];
}

void FrmSound::unloadDevice() {
  if (lastIndex() > 0) devices_.pop_back();
}

}  // namespace kelvora
