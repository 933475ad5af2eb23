#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "base/randomGenerator.h"
#include "platform/audio.h"
#include "platform/backend.h"
#include "platform/headless/headlessSocket.h"

namespace kelvora {

struct HeadlessScreen;

/// How the headless process "ends": endProcess throws it, up to whoever started the game.
struct ProcessEnded {};

/// A machine without screen, network and clock: the whole client runs on it, and whoever holds it sets what the outside
/// world does and sees what the game did. One may be installed at a time.
class HeadlessBackend : public Backend {
 public:
  HeadlessBackend();
  ~HeadlessBackend() override;

  // What the outside world is like.
  Tick ticks = 1'000'000;
  double seconds = 43'200;          ///< since midnight
  std::deque<float> scriptedDraws;  ///< what Rnd() gives first; then the generator
  RandomGenerator generator;
  std::string commandLineText;
  std::string path = "/kelvora";  ///< the program's folder
  std::string host = "web.invalid";
  std::map<std::pair<std::string, std::string>, std::string> settings;  ///< by section and key
  std::set<std::string> missingFiles;  ///< paths of sounds and tracks that are not there
  int playState = psReady;             ///< of the music player; follows its commands until it is set
  /// Gives the picture of a path in place of the file.
  std::function<PicturePointer(const std::string& path)> pictureSource;

  /// Moves both clocks on.
  void advance(Tick ms);
  /// Queues an event for the next DoEvents.
  void post(std::function<void()> event) { events_.push_back(std::move(event)); }
  /// Runs while a message box stands, before it is answered.
  std::function<void(const std::string& text)> onMessageBox;
  /// Runs while a modal form is up; a form that it leaves visible is hidden then.
  std::function<void(Form& form)> onModal;
  /// Runs first in every DoEvents.
  std::function<void()> onDoEvents;

  // What the game did.
  std::vector<std::string> messageBoxes;
  std::vector<std::string> modalForms;  ///< captions
  std::vector<std::pair<int, int>> pointerPlacements;
  std::vector<float> seeds;
  std::vector<std::string> soundCommands;  ///< "bounce.wav play": what each effect's device was told, in order
  std::vector<std::string> tracks;         ///< paths that the music player was given
  int doEventsCount = 0;
  bool lastMayWait = false;  ///< the argument of the last DoEvents
  /// In order: "read section/key", "write section/key=text", "picture path", "sound bounce.wav play", "track path",
  /// "connect host:port", "randomize", "show caption", "hide caption", "modal caption", "box text", "DoEvents", "end".
  std::vector<std::string> journal;

  /// The control that asked for the keyboard focus last; null if it is gone.
  Control* focus() const;
  /// The socket's far end.
  HeadlessSocket& socketOf(const Winsock& socket);

  Tick tickCount() override { return ticks; }
  float secondsSinceMidnight() override { return static_cast<float>(seconds); }
  float random() override;
  float random(float argument) override { return generator.next(argument); }
  void randomize(float seed) override;
  void doEvents(bool mayWait) override;
  void messageBox(const std::string& text) override;
  [[noreturn]] void endProcess() override;
  void placePointer(int x, int y) override { pointerPlacements.emplace_back(x, y); }
  std::string commandLine() override { return commandLineText; }
  std::string applicationPath() override { return path; }
  PicturePointer loadPicture(const std::string& file) override;
  std::string readSetting(const std::string& section, const std::string& key, const std::string& fallback) override;
  void writeSetting(const std::string& section, const std::string& key, const std::string& value) override;
  std::unique_ptr<SocketPeer> createSocket(Winsock& socket) override;
  std::unique_ptr<SoundPeer> createSound() override;
  std::unique_ptr<MusicPeer> createMusic() override;
  void realize(Form& form) override;
  void runModal(Form& form) override;
  std::string webHost() override { return host; }

 private:
  void runEvents();
  void runTimers();

  std::shared_ptr<HeadlessScreen> screen_;
  std::deque<std::function<void()>> events_;
};

}  // namespace kelvora
