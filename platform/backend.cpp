#include "platform/backend.h"

#include <cassert>
#include <cstdlib>

namespace kelvora {

namespace {
Backend* installed = nullptr;
}

void installBackend(Backend* newBackend) { installed = newBackend; }

Backend& backend() {
  assert(installed && "a backend is installed before the game starts");
  return *installed;
}

Millis GetTickCount() { return backend().tickCount(); }
float Timer() { return backend().secondsSinceMidnight(); }
float Rnd() { return backend().random(); }
float Rnd(float argument) { return backend().random(argument); }
void Randomize(float seed) { backend().randomize(seed); }

void DoEvents(bool mayWait) { backend().doEvents(mayWait); }
void MsgBox(const std::string& text) {
  constexpr int maxBoxes = 16;
  static int standing = 0;
  if (standing == maxBoxes) return;
  struct Box {
    Box() { ++standing; }
    ~Box() { --standing; }
  } box;
  backend().messageBox(text);
}
void endProcess() {
  backend().endProcess();
  std::abort();  // not reached, but the compiler doesn't know that a virtual function never returns
}
void SetCursorPos(int x, int y) { backend().placePointer(x, y); }
std::string commandLine() { return backend().commandLine(); }
std::string applicationPath() { return backend().applicationPath(); }
PicturePointer LoadPicture(const std::string& path) { return backend().loadPicture(path); }

std::string GetSetting(const std::string& section, const std::string& key, const std::string& fallback) {
  return backend().readSetting(section, key, fallback);
}
void SaveSetting(const std::string& section, const std::string& key, const std::string& value) {
  backend().writeSetting(section, key, value);
}
std::string webHost() { return backend().webHost(); }

AppVersion appVersion() { return {KELVORA_VERSION_MAJOR, KELVORA_VERSION_MINOR, KELVORA_VERSION_REVISION}; }

std::string appVersionText() {
  const AppVersion version = appVersion();
  return std::to_string(version.major) + "." + std::to_string(version.minor) + "." + std::to_string(version.revision);
}

}  // namespace kelvora
