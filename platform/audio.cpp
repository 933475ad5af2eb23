#include "platform/audio.h"

#include "base/fault.h"
#include "platform/backend.h"

namespace kelvora {

SoundDevice::SoundDevice() : peer_(backend().createSound()) {}

void SoundDevice::Silent(bool silent) {
  silent_ = silent;
  peer_->silence(silent);
}

void SoundDevice::Command(std::string_view command) {
  if (command == "open") {
    if (open_) throw RuntimeFault("Device already open");
    if (!peer_->open(FileName)) throw RuntimeFault("File not found");
    open_ = true;
    return;
  }
  if (!open_) throw RuntimeFault("Device not open");
  if (command == "prev") {
    peer_->rewind();
  } else if (command == "play") {
    peer_->play();
  } else if (command == "stop") {
    peer_->stop();
  } else {
    raiseInvalidPropertyValue();
  }
}

namespace {

std::string nameOf(const std::string& file) { return file.substr(file.rfind('/') + 1); }

}  // namespace

MusicPlayer::MusicPlayer(Control* container, Place place)
    : Label(container, place, "", {.alignment = Alignment::Centre, .systemColours = true}),
      peer_(backend().createMusic()) {}

void MusicPlayer::URL(const std::string& file) {
  Caption = nameOf(file);
  if (file.empty()) {
    peer_->stop();
  } else {
    peer_->play(file);
  }
}

}  // namespace kelvora
