#pragma once

#include <QElapsedTimer>
#include <QSocketNotifier>
#include <QTimer>
#include <optional>
#include <string>

#include "base/randomGenerator.h"
#include "platform/backend.h"
#include "platform/desktop/soundMixer.h"
#include "platform/qt/qtSettings.h"
#include "platform/sockets/networkSignal.h"
#include "platform/windowing/framePacer.h"

namespace kelvora {

/// The desktop backend. Needs a QApplication that outlives it. File names (applicationPath, loadPicture) are in the
/// file system's encoding, not in code page 1252.
class QtDesktop : public Backend {
 public:
  /// `commandLine` is the program's arguments, separated by blanks.
  explicit QtDesktop(std::string commandLine);

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
  void serveUntil(FramePacer::TimePoint end);

  std::string commandLine_;
  QElapsedTimer sinceStart_;
  qint64 askedSecond_ = -1;  ///< the system clock's second when local time was last queried
  qint64 secondOfDay_ = 0;   ///< the second of the day at that time
  RandomGenerator generator_;
  QtSettings settings_;
  std::shared_ptr<SoundMixer> mixer_ = std::make_shared<SoundMixer>();
  std::optional<FramePacer> pacer_;
  QTimer wakeUp_;
  QSocketNotifier network_{networkSignal(), QSocketNotifier::Read};
};

}  // namespace kelvora
