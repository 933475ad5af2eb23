#include "platform/win32/win32Backend.h"

#include <cstdlib>
#include <utility>

#include "base/codePage.h"
#include "platform/desktop/chosenWebHost.h"
#include "platform/desktop/dataFolder.h"
#include "platform/desktop/mixedAudio.h"
#include "platform/pictures/pictureFile.h"
#include "platform/sockets/streamSocket.h"
#include "platform/win32/formPeer.h"
#include "platform/win32/messageWindow.h"
#include "platform/windowing/boxText.h"
#include "platform/windowing/faultReport.h"
#include "platform/windowing/handlerCall.h"
#include "raster/surface.h"
// Needs <windows.h>.
#include <mmsystem.h>

namespace kelvora {

Win32Backend::Win32Backend(std::string commandLine) : commandLine_(std::move(commandLine)) {
  Surface::setGlyphSource(&glyphs_);
  if (const auto frame = frameFromEnvironment()) {
    pacer_.emplace(*frame);
    // By default, waits have a resolution of 15 ms.
    timeBeginPeriod(1);
  }
}

Millis Win32Backend::tickCount() {
  return firstTick + std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start_).count();
}

float Win32Backend::secondsSinceMidnight() {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  const int seconds = now.wHour * 3600 + now.wMinute * 60 + now.wSecond;
  return static_cast<float>(seconds + now.wMilliseconds / 1000.0);
}

void Win32Backend::messageBox(const std::string& text) {
  std::string shown;
  for (const char16_t letter : boxText(text)) {
    constexpr char16_t mayBreakHere = 0x200B;
    // The system breaks lines only at blanks.
    if (letter == mayBreakHere) shown += ' ';
    if (const auto byte = toCodePage(letter)) shown += *byte;
  }
  const HandlerScope scope;
  MessageWindow box(shown);
  box.Show(Form::Modality::Modal);
}

void Win32Backend::endProcess() { std::_Exit(0); }

void Win32Backend::placePointer(int x, int y) {
  const double scale = screenScale(activeForm());
  ::SetCursorPos(static_cast<int>(x * scale), static_cast<int>(y * scale));
}

std::string Win32Backend::applicationPath() { return dataFolder(); }

PicturePointer Win32Backend::loadPicture(const std::string& path) {
  noteForReport("the picture " + path);
  return loadPictureFile(path);
}

std::string Win32Backend::readSetting(const std::string& section, const std::string& key, const std::string& fallback) {
  noteForReport("the setting \"" + key + "\" in section \"" + section + "\" of the registry");
  return settings_.read(section, key, fallback);
}

void Win32Backend::writeSetting(const std::string& section, const std::string& key, const std::string& value) {
  settings_.write(section, key, value);
}

std::unique_ptr<SocketPeer> Win32Backend::createSocket(Winsock& socket) {
  return std::make_unique<StreamSocket>(socket);
}

std::unique_ptr<SoundPeer> Win32Backend::createSound() { return std::make_unique<MixedSound>(mixer_); }

std::unique_ptr<MusicPeer> Win32Backend::createMusic() { return std::make_unique<MixedMusic>(mixer_); }

void Win32Backend::realize(Form& form) {
  auto peer = std::make_unique<FormPeer>(form);
  FormPeer& window = *peer;
  form.peer = std::move(peer);
  realizeChildren(form, window);
}

std::string Win32Backend::webHost() { return chosenWebHost(); }

}  // namespace kelvora
