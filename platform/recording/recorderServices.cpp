// The backend's services, whose answers are recorded on their way.

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "base/fault.h"
#include "platform/recording/recordedPeers.h"
#include "platform/recording/recorder.h"
#include "platform/recording/secrets.h"

namespace kelvora::recording {

Millis Recorder::tickCount() {
  if (!place_.isInGame) return inner_.tickCount();
  ++calls_;
  if (inner_.tickCount() > now_) {
    const std::uint64_t calls = calls_;
    begin(Kind::Tick);
    writer_.number(calls);
    putTime();
  }
  return now_;
}

float Recorder::secondsSinceMidnight() {
  if (!place_.isInGame) return inner_.secondsSinceMidnight();
  return static_cast<float>(static_cast<double>((startOfDay_ + now_ - start_) % dayLength) / 1000);
}

void Recorder::doEvents(bool mayWait) {
  callOut(true, mayWait, [&] {
    if (!mayWait && place_.handlers == 0) check();
    inner_.doEvents(mayWait);
  });
}

void Recorder::messageBox(const std::string& text) {
  callOut(true, true, [&] { inner_.messageBox(text); });
}

void Recorder::runModal(Form& form) {
  callOut(true, true, [&] { inner_.runModal(form); });
}

void Recorder::endProcess() {
  writer_.byte(static_cast<std::uint8_t>(Kind::End));
  finish();
  inner_.endProcess();
  std::abort();  // not reached
}

void Recorder::placePointer(int x, int y) {
  command([&] { inner_.placePointer(x, y); });
}

std::string Recorder::commandLine() {
  std::string line = inner_.commandLine();
  begin(Kind::CommandLine);
  writer_.text(line);
  return line;
}

std::string Recorder::webHost() {
  std::string host = inner_.webHost();
  begin(Kind::WebHost);
  writer_.text(host);
  return host;
}

PicturePointer Recorder::loadPicture(const std::string& path) {
  std::string fault;
  PicturePointer picture;
  try {
    picture = inner_.loadPicture(path);
  } catch (const RuntimeFault& reason) {
    fault = reason.what();
  }
  begin(Kind::Picture);
  writer_.text(fault);
  if (!fault.empty()) throw RuntimeFault(fault);
  return picture;
}

std::string Recorder::readSetting(const std::string& section, const std::string& key, const std::string& fallback) {
  std::string value = inner_.readSetting(section, key, fallback);
  if (!place_.isInGame) return value;
  begin(Kind::Setting);
  writer_.text(toldSetting(key, value));
  return value;
}

void Recorder::writeSetting(const std::string& section, const std::string& key, const std::string& value) {
  command([&] { inner_.writeSetting(section, key, value); });
}

std::unique_ptr<SocketPeer> Recorder::createSocket(Winsock& socket) {
  return std::make_unique<RecordedSocket>(*this, socket, inner_.createSocket(socket));
}

std::unique_ptr<SoundPeer> Recorder::createSound() {
  return std::make_unique<RecordedSound>(*this, inner_.createSound());
}

std::unique_ptr<MusicPeer> Recorder::createMusic() {
  return std::make_unique<RecordedMusic>(*this, inner_.createMusic());
}

}  // namespace kelvora::recording
