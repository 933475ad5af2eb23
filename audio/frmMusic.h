#pragma once

#include "platform/audio.h"
#include "platform/form.h"

namespace kelvora {

/// The music player and the timer that starts the next track. Loaded with the music and normally hidden. Unloading it
/// stops the music.
class FrmMusic : public Form {
 public:
  FrmMusic();
  /// Creates the hidden window, without which the timer wouldn't run.
  void load() override;
  /// Stops the timer and the music.
  void unloaded() override;

  MusicPlayer player{this, {120, 195, 4230, 255}};
  IntervalTimer tmrNext{this, 2000};

 private:
  void tmrNext_Timer();
};

extern FormSlot<FrmMusic> frmMusic;

}  // namespace kelvora
