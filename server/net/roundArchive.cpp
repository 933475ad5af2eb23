#include "server/net/roundArchive.h"

#include <stdexcept>

#include "server/replays/roundFile.h"
#include "server/system/files.h"

namespace kelvora::server {

namespace {

Moments roundIn(const std::string& fileName) {
  const FileText file = readFile(fileName, Moments::maxSize);
  const auto refuse = [&](const std::string& why) {
    return std::runtime_error("the recording " + fileName + " can't be shown: " + why);
  };
  if (!file.error.empty()) throw refuse(file.error);
  if (!file.text) throw refuse("there is no such file");
  try {
    return readRound(*file.text);
  } catch (const std::runtime_error& error) {
    throw refuse(error.what());
  }
}

}  // namespace

RoundArchive::RoundArchive(Arena& arena, ServerHost& host, const ReplaySettings& settings,
                           const std::string& replayFile)
    : arena_(arena) {
  if (!settings.folder.empty()) recorder_.emplace(host, settings);
  if (!replayFile.empty()) player_.emplace(roundIn(replayFile));
}

void RoundArchive::tick(Millis now, const std::function<bool()>& isPlayed) {
  if (recorder_) record(now, isPlayed);
  if (player_) {
    player_->tick(now, !arena_.spectators().empty(), [this](const std::string& frame) { arena_.show(frame); });
  }
}

void RoundArchive::record(Millis now, const std::function<bool()>& isPlayed) {
  const bool isOn = arena_.isRoundRunning() && isPlayed();
  if (recorder_->isRecording() && (!isOn || arena_.roundCount() != recordedRound_)) {
    arena_.observe(false, now);
    recorder_->end(now);
  }
  if (!isOn || recorder_->isRecording()) return;
  recorder_->begin(now);
  recordedRound_ = arena_.roundCount();
  arena_.observe(true, now);
}

void RoundArchive::add(const std::string& frame, Millis now) {
  if (recorder_) recorder_->add(frame, now);
}

void RoundArchive::show(const std::function<void(const std::string& frame)>& toNewcomer) const {
  if (player_) player_->show(toNewcomer);
}

void RoundArchive::end(Millis now) {
  if (recorder_) recorder_->end(now);
}

}  // namespace kelvora::server
