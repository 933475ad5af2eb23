#pragma once

#include <memory>
#include <string>

#include "base/millis.h"
#include "platform/winsock.h"
#include "raster/picture.h"

namespace kelvora {

class Form;
class Control;
class SoundPeer;
class MusicPeer;

/// The services of a platform. One backend is installed before the game starts and outlives it. The game calls it
/// through the free functions below, which state its contracts.
class Backend {
 public:
  virtual ~Backend() = default;

  virtual Millis tickCount() = 0;
  virtual float secondsSinceMidnight() = 0;
  virtual float random() = 0;
  virtual float random(float argument) = 0;
  virtual void randomize(float seed) = 0;

  virtual void doEvents(bool mayWait) = 0;
  virtual void messageBox(const std::string& text) = 0;
  [[noreturn]] virtual void endProcess() = 0;
  virtual void placePointer(int x, int y) = 0;
  virtual std::string commandLine() = 0;
  virtual std::string applicationPath() = 0;
  virtual PicturePointer loadPicture(const std::string& path) = 0;

  virtual std::string readSetting(const std::string& section, const std::string& key, const std::string& fallback) = 0;
  virtual void writeSetting(const std::string& section, const std::string& key, const std::string& value) = 0;

  /// Create the backend's side of a socket, sound effect or music player. Never null.
  virtual std::unique_ptr<SocketPeer> createSocket(Winsock& socket) = 0;
  virtual std::unique_ptr<SoundPeer> createSound() = 0;
  virtual std::unique_ptr<MusicPeer> createMusic() = 0;
  /// Creates the peers of a form and its controls, if the backend has any.
  virtual void realize(Form& form) = 0;
  /// Processes events until the form is no longer visible.
  virtual void runModal(Form& form) = 0;
  virtual std::string webHost() = 0;
};

/// Installs a backend; null uninstalls it. `backend` must not be called while none is installed.
void installBackend(Backend* backend);
Backend& backend();

/// The first tick: well above 32001, so that a stored tick of 0 counts as long ago.
inline constexpr Millis firstTick = 1'000'000;
/// Milliseconds since an unspecified start, at least `firstTick`. Never decreases.
Millis GetTickCount();
/// Seconds since midnight, in local time.
float Timer();
/// A uniform random number from 0 up to but excluding 1. A negative argument restarts the sequence from it, 0 repeats
/// the last number.
float Rnd();
float Rnd(float argument);
/// Starts the sequence from a seed.
void Randomize(float seed);

/// Processes events of mouse, keys, sockets and timers. With `mayWait` it may sleep until there is one.
void DoEvents(bool mayWait = false);
/// Shows a message with one button and processes events until it is closed. Boxes nest on the stack, so at most 16 are
/// open at once. Further ones are not shown.
void MsgBox(const std::string& text);
/// Ends the process at once, without sending, saving or destroying anything.
[[noreturn]] void endProcess();
/// Moves the mouse pointer to a position in screen pixels.
void SetCursorPos(int x, int y);
/// The program's arguments, separated by blanks.
std::string commandLine();
/// The folder of the program's data files, without a trailing slash.
std::string applicationPath();
/// Loads a PNG or JPEG file. RuntimeFault if it is missing or unreadable.
PicturePointer LoadPicture(const std::string& path);

/// A stored setting, or the fallback if there is none.
std::string GetSetting(const std::string& section, const std::string& key, const std::string& fallback);
/// Saves a setting at once. Failures are silent.
void SaveSetting(const std::string& section, const std::string& key, const std::string& value);

/// The web host that serves the game list and the update file: "host" or "host:port".
std::string webHost();

/// The program's version in three numbers.
struct AppVersion {
  int major;
  int minor;
  int revision;
};
AppVersion appVersion();
/// The three numbers separated by dots, without padding.
std::string appVersionText();

}  // namespace kelvora
