// The backend's services, answered by the recording.

#include <cstddef>
#include <memory>
#include <string>

#include "base/fault.h"
#include "platform/pictures/pictureFile.h"
#include "platform/recording/handlers.h"
#include "platform/recording/replay.h"
#include "platform/recording/replayedPeers.h"

namespace kelvora::recording {

Millis Replay::tickCount() {
  ++calls_;
  if (next() == Kind::Tick && nextCall_ == calls_) {
    consume();
    now_ = readTime();
  }
  return now_;
}

float Replay::secondsSinceMidnight() {
  return static_cast<float>(static_cast<double>((startOfDay_ + now_ - start_) % dayLength) / 1000);
}

void Replay::doEvents(bool mayWait) {
  if (!mayWait && handlers_ == 0) {
    ++frames_;
    if (onFrame && !onFrame()) throw ReplayEnd{ReplayEnd::Reason::Stopped, {}};
  }
  playUntilReturn();
}

void Replay::messageBox(const std::string& text) {
  boxes_.push_back(text);
  playUntilReturn();
  boxes_.pop_back();
}

void Replay::runModal(Form&) { playUntilReturn(); }

void Replay::endProcess() {
  expect(Kind::End);
  throw ReplayEnd{ReplayEnd::Reason::Ended, {}};
}

void Replay::placePointer(int, int) { command(); }

std::string Replay::commandLine() {
  expect(Kind::CommandLine);
  return reader_.text(maxText);
}

std::string Replay::webHost() {
  expect(Kind::WebHost);
  return reader_.text(maxText);
}

PicturePointer Replay::loadPicture(const std::string& path) {
  expect(Kind::Picture);
  const std::string fault = reader_.text(maxText);
  if (!fault.empty()) throw RuntimeFault(fault);
  return pictureSource ? pictureSource(path) : loadPictureFile(path);
}

std::string Replay::readSetting(const std::string&, const std::string&, const std::string&) {
  expect(Kind::Setting);
  return reader_.text(maxText);
}

void Replay::writeSetting(const std::string&, const std::string&, const std::string&) { command(); }

std::unique_ptr<SocketPeer> Replay::createSocket(Winsock& socket) {
  return std::make_unique<ReplayedSocket>(*this, socket);
}

std::unique_ptr<SoundPeer> Replay::createSound() { return std::make_unique<ReplayedSound>(*this); }

std::unique_ptr<MusicPeer> Replay::createMusic() { return std::make_unique<ReplayedMusic>(*this); }

void Replay::realize(Form& form) {
  const std::size_t number = live_->forms.size();
  live_->forms.push_back(&form);
  for (Control* control : controlsOf(form)) control->peer = std::make_unique<ReplayedPeer>(live_, *control, number);
  command();
}

}  // namespace kelvora::recording
