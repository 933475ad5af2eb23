#pragma once

#include "platform/audio.h"
#include "platform/form.h"

namespace kelvora {

/// The music player and the timer that starts the next track. Loaded with the music and hidden unless it is asked for;
/// unloading it ends the music.
class FrmMusic : public Form {
 public:
  FrmMusic();
  void load() override;
  void unloaded() override;

  MusicPlayer player{this, {120, 195, 4230, 255}};
  IntervalTimer tmrNext{this, 2000};

 private:
  void tmrNext_Timer();
};

extern FormSlot<FrmMusic> frmMusic;

}  // namespace kelvora
