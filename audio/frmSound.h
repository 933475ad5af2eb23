#pragma once

#include <deque>

#include "platform/audio.h"
#include "platform/form.h"

namespace kelvora {

/// Holds the devices of the sound effects; never shown.
class FrmSound : public Form {
 public:
  FrmSound();

  /// The device of a slot; RuntimeFault "Subscript out of range" where there is none.
  SoundDevice& mm(int slot);
  int lastIndex() const { return static_cast<int>(devices_.size()) - 1; }
  /// Adds a device behind the last one.
  void loadDevice() { devices_.emplace_back(); }
  /// Takes the last device away; the first one stays for good.
  void unloadDevice();

 private:
  std::deque<SoundDevice> devices_;
};

extern FormSlot<FrmSound> frmSound;

}  // namespace kelvora
