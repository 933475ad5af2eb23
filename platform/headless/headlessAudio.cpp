#include "platform/headless/headlessAudio.h"

#include <utility>

#include "platform/headless/headlessScreen.h"

namespace kelvora {

HeadlessSound::HeadlessSound(std::shared_ptr<HeadlessScreen> screen) : screen_(std::move(screen)) {}

bool HeadlessSound::open(const std::string& file) {
  if (screen_->machine->missingFiles.contains(file)) return false;
  file_ = file;
  note("open");
  return true;
}

void HeadlessSound::silence(bool silent) {
  if (!file_.empty()) note(silent ? "Silent True" : "Silent False");
}

void HeadlessSound::note(const std::string& command) {
  HeadlessBackend& machine = *screen_->machine;
  machine.soundCommands.push_back(file_.substr(file_.rfind('/') + 1) + " " + command);
  machine.journal.push_back("sound " + machine.soundCommands.back());
}

HeadlessMusic::HeadlessMusic(std::shared_ptr<HeadlessScreen> screen) : screen_(std::move(screen)) {}

void HeadlessMusic::play(const std::string& file) {
  HeadlessBackend& machine = *screen_->machine;
  machine.tracks.push_back(file);
  machine.journal.push_back("track " + file);
  machine.playState = machine.missingFiles.contains(file) ? psStopped : psPlaying;
}

void HeadlessMusic::stop() {
  if (screen_->machine->playState != psReady) screen_->machine->playState = psStopped;
}

PlayState HeadlessMusic::playState() const { return screen_->machine->playState; }

}  // namespace kelvora
