#pragma once

#include <string>
#include <vector>

#include "audio/frmMusic.h"
#include "audio/frmSound.h"
#include "audio/soundMan.h"
#include "tests/support/gameTest.h"

namespace kelvora {

/// A client whose sound devices record their commands.
class AudioTest : public GameTest {
 protected:
  /// Opens the effects, names the tracks, and discards what that recorded.
  void openSounds() {
    soundMan::initAudio();
    machine.soundCommands.clear();
  }
  /// The commands for playing an effect.
  static std::vector<std::string> playing(const std::string& file) {
    return {file + " Silent False", file + " prev", file + " play"};
  }
  static std::vector<std::string> stopping(const std::string& file) {
    return {file + " Silent True", file + " prev", file + " stop"};
  }
  /// The path of a track: 0 the store's, 1 to 5 the rotation.
  std::string track(int number) const {
    const std::string name = number == 0 ? "music_shopping" : "music" + std::to_string(number);
    return machine.path + "/sounds/" + name + ".mp3";
  }
  /// Sets the player's state and runs the timer.
  void tickMusic(PlayState playState) {
    machine.playState = playState;
    tick(2000);
    passEvents();
  }
  void enter(const std::string& line) { netMan::sendChat(line); }
};

}  // namespace kelvora
