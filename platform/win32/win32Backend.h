#pragma once

#include <memory>
#include <optional>
#include <string>

#include "base/randomGenerator.h"
#include "platform/backend.h"
#include "platform/desktop/soundMixer.h"
#include "platform/win32/gdiGlyphs.h"
#include "platform/win32/registrySettings.h"
#include "platform/windowing/framePacer.h"

namespace kelvora {

/// The Windows backend, on the system's own libraries.
class Win32Backend : public Backend {
 public:
  /// `commandLine` is the program's arguments, joined by blanks.
  explicit Win32Backend(std::string commandLine);

  Millis tickCount() override;
  float secondsSinceMidnight() override;
  float random() override { return generator_.next(); }
  float random(float argument) override { return generator_.next(argument); }
  void randomize(float seed) override { generator_.randomize(seed); }

  void doEvents(bool mayWait) override;
  void messageBox(const std::string& text) override;
  [[noreturn]] void endProcess() override;
  void placePointer(int x, int y) override;
  std::string commandLine() override { return commandLine_; }
  std::string applicationPath() override;
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
  using Clock = FramePacer::TimePoint::clock;

  void servePending();
  void serveUntil(Clock::time_point end);
  /// Sleeps until there is an event or a timer is due, at most for this time (ms; -1 without limit).
  void wait(std::int64_t milliseconds);

  std::string commandLine_;
  Clock::time_point start_ = Clock::now();
  RandomGenerator generator_;
  GdiGlyphSource glyphs_;
  RegistrySettings settings_;
  std::shared_ptr<SoundMixer> mixer_ = std::make_shared<SoundMixer>();
  std::optional<FramePacer> pacer_;
};

}  // namespace kelvora
