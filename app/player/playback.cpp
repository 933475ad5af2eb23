#include "app/player/playback.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "app/player/pack.h"

namespace kelvora::player {

void Playback::serve() {
  hearScout();
  if (isAsked_ && runner_.hasInput()) hearRunner();
  if (!isAsked_ && wanted_) ask();
}

void Playback::wait() {
  for (serve(); isBusy() && (isAsked_ || scout_.isOpen()); serve()) (isAsked_ ? runner_ : scout_).awaitInput();
}

void Playback::hearScout() {
  constexpr std::size_t maxMarks = 100'000;
  while (scout_.isOpen() && scout_.hasInput()) {
    auto message = scout_.receive();
    if (!message) {
      if (!isScouted_) ending_ = "The replay has failed.";
      isScouted_ = true;
      scout_.close();
      return;
    }
    Unpack report(message->text);
    switch (report.value<Report>()) {
      case Report::Mark: {
        Mark mark;
        report.field(mark.time);
        report.field(mark.kind);
        report.field(mark.isOwn);
        report.field(mark.text);
        if (marks_.size() < maxMarks) marks_.push_back(std::move(mark));
        break;
      }
      case Report::Progress:
        report.field(length_);
        break;
      case Report::Snapshot:
        snapshots_.push_back({report.value<Millis>(), std::move(message->passed)});
        break;
      case Report::End:
        report.field(length_);
        report.field(ending_);
        isScouted_ = true;
        break;
    }
  }
}

void Playback::hearRunner() {
  isAsked_ = false;
  const auto message = runner_.receive();
  if (!message) {
    runner_.close();
    isAtEnd_ = true;
    return;
  }
  Unpack state(message->text);
  const auto time = state.value<Millis>();
  if (time < 0) {  // the recording is over
    isAtEnd_ = true;
    return;
  }
  time_ = time;
  isAtEnd_ = isScouted_ && time_ >= length_ - 1;
  state.field(frame_);
  mirror_.show(state);
  state.field(music_.file);
  state.field(music_.number);
  for (auto count = state.value<std::size_t>(); count > 0; --count) {
    recording::Sounding sounding;
    state.field(sounding.file);
    state.field(sounding.starts);
    if (onSound && !isJump_) onSound(sounding);
  }
}

void Playback::goTo(Millis time) { wanted_ = Target{std::max<Millis>(time, 0), anyFrame}; }

void Playback::goToFirstWindow() {
  constexpr Millis step = 100;
  constexpr Millis maxWait = 60'000;
  for (Millis time = 0; time <= maxWait && mirror_.forms().empty() && !isAtEnd_; time += step) {
    goTo(time);
    wait();
    if (isScouted_ && time > length_) return;
  }
}

void Playback::step() {
  constexpr Millis maxPause = 1000;  // where there are no frames
  wanted_ = Target{time_ + maxPause, frame_ + 1};
}

Playback::Snapshot* Playback::snapshotBefore(Millis time) {
  const auto after = std::find_if(snapshots_.begin(), snapshots_.end(),
                                  [time](const Snapshot& snapshot) { return snapshot.time > time; });
  return after == snapshots_.begin() ? nullptr : &*std::prev(after);
}

void Playback::ask() {
  Snapshot* const snapshot = snapshotBefore(wanted_->time);
  const bool isBack = !runner_.isOpen() || wanted_->time < time_;
  const bool isFarAhead = snapshot && wanted_->frame == anyFrame && snapshot->time > time_;
  isJump_ = isBack || isFarAhead;
  if (isJump_) {
    if (!snapshot) return;  // the scout has just begun
    start(*snapshot);
  }
  if (isAtEnd_ && !isJump_) {
    wanted_.reset();
    return;
  }
  Pack pack;
  // The last moment is just before the end.
  if (isScouted_) wanted_->time = std::min(wanted_->time, length_ - 1);
  pack.field(*wanted_);
  wanted_.reset();
  isAsked_ = runner_.send(pack.bytes);
}

void Playback::start(Snapshot& snapshot) {
  auto [ours, theirs] = Channel::pair();
  snapshot.channel.send({}, theirs);
  runner_ = std::move(ours);
  isAtEnd_ = false;
}

}  // namespace kelvora::player
