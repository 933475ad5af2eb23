#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/player/channel.h"
#include "app/player/engine.h"
#include "app/player/formState.h"
#include "app/player/marks.h"
#include "base/millis.h"

namespace kelvora::player {

/// Shows a recording's windows at any of its times. The game runs in other processes, so only the calls that say so
/// wait for it.
class Playback {
 public:
  /// `scout` is the channel that startScout has returned.
  explicit Playback(Channel scout) : scout_(std::move(scout)) {}

  /// Takes what the other processes have told, and asks for what is wanted. Call it often.
  void serve();
  /// Serves until the picture that is wanted has come.
  void wait();
  /// Waits for more from the scout.
  void awaitScout() const { scout_.awaitInput(); }

  // The scout's findings so far.
  const std::vector<Mark>& marks() const { return marks_; }
  /// The recording's length in ms, as far as it is known.
  Millis length() const { return length_; }
  bool isScouted() const { return isScouted_; }
  /// How the recording has ended: a fault, for example. Empty if it simply ends.
  const std::string& ending() const { return ending_; }

  // The moment that is shown.
  Millis time() const { return time_; }
  std::uint64_t frame() const { return frame_; }
  const Music& music() const { return music_; }
  bool isAtEnd() const { return isAtEnd_; }
  /// True while a picture is awaited.
  bool isBusy() const { return isAsked_ || wanted_; }
  const FormMirror& mirror() const { return mirror_; }

  /// Waits until a window is there, up to a minute of the recording.
  void goToFirstWindow();
  /// Goes to a time, forward or back. While busy, only the last request counts.
  void goTo(Millis time);
  /// Goes on to the next frame.
  void step();

  /// Called for each sound effect that begins or ends while the recording goes on. Jumps are silent.
  std::function<void(const recording::Sounding& sounding)> onSound;

 private:
  static constexpr std::uint64_t anyFrame = std::numeric_limits<std::uint64_t>::max();
  struct Snapshot {
    Millis time = 0;
    Channel channel;
  };

  void hearScout();
  void hearRunner();
  void ask();
  /// The snapshot that is nearest before the time. Null if there is none yet.
  Snapshot* snapshotBefore(Millis time);
  void start(Snapshot& snapshot);

  Channel scout_;
  std::vector<Mark> marks_;
  Millis length_ = 0;
  bool isScouted_ = false;
  std::string ending_;
  std::vector<Snapshot> snapshots_;

  Channel runner_;
  bool isAsked_ = false;
  bool isJump_ = false;
  std::optional<Target> wanted_;
  Millis time_ = 0;
  std::uint64_t frame_ = 0;
  Music music_;
  bool isAtEnd_ = false;
  FormMirror mirror_;
};

}  // namespace kelvora::player
