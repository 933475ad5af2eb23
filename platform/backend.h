#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/winsock.h"
#include "raster/picture.h"

namespace kelvora {

class Form;
class Control;
class SoundPeer;
class MusicPeer;

/// Milliseconds; wide enough never to wrap.
using Tick = std::int64_t;

/// What a backend provides. One is installed before the game starts and outlives it; the free functions below are how
/// the game reaches it.
class Backend {
 public:
  virtual ~Backend() = default;

  virtual Tick tickCount() = 0;
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

  virtual std::unique_ptr<SocketPeer> createSocket(Winsock& socket) = 0;
  virtual std::unique_ptr<SoundPeer> createSound() = 0;
  virtual std::unique_ptr<MusicPeer> createMusic() = 0;
  /// Gives the form and everything on it their peers, if the backend has any.
  virtual void realize(Form& form) = 0;
  /// Runs events until the form is no longer visible.
  virtual void runModal(Form& form) = 0;
  virtual std::string webHost() = 0;
};

void installBackend(Backend* backend);
Backend& backend();

/// Milliseconds from an unspecified start, well above 32001 at the first call, never falling.
Tick GetTickCount();
/// Seconds since midnight, local time.
float Timer();
/// A uniform random number, at least 0 and below 1; with a negative argument the sequence restarts from it.
float Rnd();
float Rnd(float argument);
void Randomize(float seed);

/// Gives the window system its turn: events of mouse, keys, sockets and timers run here. With `mayWait` it may sleep
/// until there is one.
void DoEvents(bool mayWait = false);
/// A message with one button; events go on while it stands. Each box that an event puts up over another one takes some
/// of the stack, so that over sixteen no other is shown.
void MsgBox(const std::string& text);
/// Ends the process at once: nothing is sent, saved or torn down.
[[noreturn]] void endProcess();
/// Places the mouse pointer in absolute screen pixels.
void SetCursorPos(int x, int y);
std::string commandLine();
/// The folder where the program finds its files, without a slash at the end.
std::string applicationPath();
/// A PNG or JPEG file; one that is missing or unreadable is RuntimeFault.
PicturePointer LoadPicture(const std::string& path);

std::string GetSetting(const std::string& section, const std::string& key, const std::string& fallback);
/// Stored at once.
void SaveSetting(const std::string& section, const std::string& key, const std::string& value);

/// "host" or "host:port" of the web host that has the host list and the update file.
std::string webHost();

/// The version of the program: "1.2.1" in its three numbers.
struct AppVersion {
  int major;
  int minor;
  int revision;
};
AppVersion appVersion();
/// The three numbers joined by points, with no padding.
std::string appVersionText();

}  // namespace kelvora
