#include "app/player/engine.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <utility>
#include <vector>

#include "app/player/formState.h"
#include "app/player/marks.h"
#include "app/player/pack.h"
#include "app/player/snapshotPlan.h"
#include "app/replayGame.h"
#include "platform/form.h"
#include "raster/twips.h"

namespace kelvora::player {

namespace {

using recording::Replay;
using recording::Sounding;

/// Of all windows.
double pixelsOf(const std::vector<Form*>& forms) {
  double pixels = 0;
  for (const Form* form : forms) {
    if (form) pixels += static_cast<double>(form->Width) * static_cast<double>(form->Height);
  }
  return pixels / (twipsPerPixel * twipsPerPixel);
}

class Engine {
 public:
  Engine(Channel player, Millis interval) : channel_(std::move(player)), plan_(interval) {}

  void attach(Replay& replay) {
    replay_ = &replay;
    replay.onPause = [this](Millis next) { reach(next); };
    replay.onFrame = [this] {
      if (isScout_) tellMarks();
      return true;
    };
    replay.onSound = [this](const Sounding& sounding) {
      if (sounding.isMusic) {
        music_ = {sounding.starts ? sounding.file : "", music_.number + 1};
      } else if (!isScout_) {
        soundings_.push_back(sounding);
      }
    };
  }

  [[noreturn]] void end(const ReplayReport& report) {
    Pack pack;
    if (isScout_) pack.field(Report::End);
    pack.field(isScout_ ? report.duration : Millis{-1});
    const bool isDamaged = report.reason == recording::ReplayEnd::Reason::Damaged;
    pack.field(isDamaged ? "The recording is damaged here." : report.text);
    channel_.send(pack.bytes);
    // A runner stays until it isn't needed any more, because its end would look like a fault.
    if (!isScout_) channel_.receive();
    ::_exit(0);
  }

 private:
  /// Called before time passes.
  void reach(Millis next) {
    if (isScout_) {
      tellProgress();
      if (plan_.isDue(replay_->elapsed())) leaveSnapshot();
    }
    if (isScout_) return;
    while (next > target_.time || replay_->frames() >= target_.frame) {
      tellState(next);
      awaitTarget();
    }
  }

  void tell(const Pack& pack, const Channel& passed = Channel()) {
    if (!channel_.send(pack.bytes, passed)) ::_exit(0);  // the player has been closed
  }

  void tellMarks() {
    for (const Mark& mark : marks_.find(replay_->elapsed())) {
      Pack pack;
      pack.field(Report::Mark);
      pack.field(mark.time);
      pack.field(mark.kind);
      pack.field(mark.isOwn);
      pack.field(mark.text);
      tell(pack);
    }
  }

  void tellProgress() {
    constexpr Millis step = 1000;
    if (replay_->elapsed() < told_ + step) return;
    told_ = replay_->elapsed();
    Pack pack;
    pack.field(Report::Progress);
    pack.field(told_);
    tell(pack);
  }

  void leaveSnapshot() {
    plan_.leave(replay_->elapsed(), pixelsOf(replay_->forms()));
    auto [ours, theirs] = Channel::pair();
    const pid_t snapshot = ::fork();
    if (snapshot == 0) {
      channel_.close();
      theirs.close();
      becomeSnapshot(ours);
      return;
    }
    if (snapshot < 0) return;  // jumps take longer
    Pack pack;
    pack.field(Report::Snapshot);
    pack.field(replay_->elapsed());
    tell(pack, theirs);
  }

  /// Waits for orders. Returns in each runner.
  void becomeSnapshot(Channel& orders) {
    while (auto order = orders.receive()) {
      const pid_t runner = ::fork();
      if (runner != 0) continue;  // if there is none, its channel is closed
      orders.close();
      channel_ = std::move(order->passed);
      isScout_ = false;
      awaitTarget();
      return;
    }
    ::_exit(0);
  }

  void awaitTarget() {
    const auto message = channel_.receive();
    if (!message) ::_exit(0);
    Unpack(message->text).field(target_);
  }

  void tellState(Millis next) {
    Pack pack;
    // Nothing changes until then.
    pack.field(std::max(replay_->elapsed(), std::min(target_.time, next)));
    pack.field(replay_->frames());
    report_.pack(pack, replay_->forms(), replay_->boxes());
    pack.field(music_.file);
    pack.field(music_.number);
    const std::vector<Sounding> soundings = std::exchange(soundings_, {});
    pack.field(soundings.size());
    for (const Sounding& sounding : soundings) {
      pack.field(sounding.file);
      pack.field(sounding.starts);
    }
    tell(pack);
  }

  Channel channel_;  ///< to the player
  Replay* replay_ = nullptr;
  bool isScout_ = true;
  Music music_;
  // Of the scout.
  MarkFinder marks_;
  Millis told_ = 0;
  SnapshotPlan plan_;
  // Of a runner.
  Target target_;
  FormReport report_;
  std::vector<Sounding> soundings_;
};

}  // namespace

Channel startScout(recording::Reader::Source source, const std::string& dataFolder,
                   const std::function<void(Replay&)>& prepare, Millis interval) {
  auto [ours, theirs] = Channel::pair();
  // The scout's parent ends at once, so that nobody need wait for the scout.
  const pid_t parent = ::fork();
  if (parent != 0) {
    if (parent > 0) ::waitpid(parent, nullptr, 0);
    return std::move(ours);  // if there is no scout, the other end is closed
  }
  if (::fork() != 0) ::_exit(0);
  ours.close();
  std::signal(SIGCHLD, SIG_IGN);  // nor for its copies
  Engine engine(std::move(theirs), interval);
  engine.end(replayGame(std::move(source), dataFolder, [&](Replay& replay) {
    if (prepare) prepare(replay);
    engine.attach(replay);
  }));
}

}  // namespace kelvora::player
