#pragma once

#include <deque>

#include "platform/audio.h"
#include "platform/form.h"

namespace kelvora {

/// Holds the sound effects' devices. Never shown.
class FrmSound : public Form {
 public:
  FrmSound();

  /// The device of a slot. RuntimeFault "Subscript out of range" if there is none.
  SoundDevice& mm(int slot);
  /// The last slot with a device, at least 0.
  int lastIndex() const { return static_cast<int>(devices_.size()) - 1; }
  /// Adds a device at the end.
  void loadDevice() { devices_.emplace_back(); }
  /// Removes the last device. The first one always stays.
  void unloadDevice();

 private:
  std::deque<SoundDevice> devices_;
};

extern FormSlot<FrmSound> frmSound;

}  // namespace kelvora
