#include "platform/web/webSound.h"

#include "platform/web/page.h"
#include "platform/web/webBackend.h"

namespace kelvora {

namespace {

/// The file's address beside the page.
std::string addressOf(const std::string& file) { return file.substr(std::string(programFolder).size() + 1); }

/// The site has effects as FLAC files, which browsers decode into the same samples.
std::string packedAddressOf(const std::string& waveFile) {
  return addressOf(waveFile.substr(0, waveFile.rfind('.'))) + ".flac";
}

}  // namespace

WebSound::~WebSound() { page_closeSound(id()); }

bool WebSound::open(const std::string& file) {
  page_openSound(id(), packedAddressOf(file).c_str());
  return true;
}

void WebSound::silence(bool silent) { page_silenceSound(id(), silent ? 1 : 0); }
void WebSound::rewind() { page_stopSound(id()); }
void WebSound::play() { page_playSound(id()); }
void WebSound::stop() { page_stopSound(id()); }

void WebMusic::play(const std::string& file) { page_playMusic(addressOf(file).c_str()); }
void WebMusic::stop() { page_stopMusic(); }
PlayState WebMusic::playState() const { return static_cast<PlayState>(page_musicState()); }

}  // namespace kelvora
