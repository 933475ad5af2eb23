#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "app/player/controlState.h"
#include "app/player/engine.h"
#include "app/player/playback.h"
#include "generated/sourceFolder.h"
#include "platform/recording/file.h"
#include "platform/recording/handlers.h"
#include "tests/support/gameTest.h"

namespace kelvora::player {

inline constexpr Millis shortInterval = 3000;
inline constexpr Millis frameTime = 60;  // more than a frame takes in the recordings

inline Channel scoutOf(const std::string& file) {
  const auto prepare = [](recording::Replay& replay) { replay.pictureSource = testPicture; };
  return startScout(recording::openRecording(file), KELVORA_SOURCE_DIR, prepare, shortInterval);
}

inline std::string recordingOf(const std::string& name) {
  return std::string(KELVORA_SOURCE_DIR) + "/tests/app/recordings/" + name;
}

/// Waits until the whole recording is known.
inline void scoutWhole(Playback& playback) {
  while (!playback.isScouted()) {
    playback.awaitScout();
    playback.serve();
  }
}

/// A recording that is played by the processes of a player, shown without a screen.
class PlayerTest : public testing::Test {
 protected:
  void open(const std::string& file) { playback.emplace(scoutOf(file)); }
  void scout() { scoutWhole(*playback); }
  void goTo(Millis time) {
    playback->goTo(time);
    playback->wait();
  }
  /// Everything that the windows show.
  std::string shown() const {
    std::string all;
    for (Form* form : playback->mirror().forms()) {
      for (Control* control : recording::controlsOf(*form)) all += packProperties(*control);
    }
    return all;
  }
  std::vector<std::string> captions() const {
    std::vector<std::string> all;
    for (const Form* form : playback->mirror().forms()) all.push_back(form->Caption);
    return all;
  }

  HeadlessClient client;
  std::optional<Playback> playback;
};

}  // namespace kelvora::player
