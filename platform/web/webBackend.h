#pragma once

#include <string>

#include "base/randomGenerator.h"
#include "platform/backend.h"
#include "platform/web/webGlyphs.h"
#include "platform/windowing/framePacer.h"

namespace kelvora {

/// The folder of the program's files. Sounds are next to the page, under the same names.
inline constexpr const char* programFolder = "/kelvora";

/// A browser page behind the seam. Single-threaded: only DoEvents yields to the browser.
class WebBackend : public Backend {
 public:
  WebBackend();

  Millis tickCount() override;
  float secondsSinceMidnight() override;
  float random() override { return generator_.next(); }
  float random(float argument) override { return generator_.next(argument); }
  void randomize(float seed) override { generator_.randomize(seed); }

  void doEvents(bool mayWait) override;
  void messageBox(const std::string& text) override;
  [[noreturn]] void endProcess() override;
  /// No page may place the pointer.
  void placePointer(int, int) override {}
  std::string commandLine() override;
  std::string applicationPath() override { return programFolder; }
  PicturePointer loadPicture(const std::string& path) override;

  std::string readSetting(const std::string& section, const std::string& key, const std::string& fallback) override;
  void writeSetting(const std::string& section, const std::string& key, const std::string& value) override;

  std::unique_ptr<SocketPeer> createSocket(Winsock& socket) override;
  std::unique_ptr<SoundPeer> createSound() override;
  std::unique_ptr<MusicPeer> createMusic() override;
  void realize(Form& form) override;
  void runModal(Form& form) override;
  std::string webHost() override;

 private:
  void servePending();
  void waitUntil(double milliseconds);

  RandomGenerator generator_;
  WebGlyphSource glyphs_;
  FramePacer pacer_;
};

/// Runs the game in the page. Never returns.
[[noreturn]] void runInPage(void (*game)());

}  // namespace kelvora
