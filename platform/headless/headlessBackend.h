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

/// Thrown by endProcess, to the caller that started the game.
struct ProcessEnded {};

/// A machine without screen, network and clock that runs the whole client. Its owner controls the outside world and
/// inspects what the game did. One may be installed at a time.
class HeadlessBackend : public Backend {
 public:
  HeadlessBackend();
  ~HeadlessBackend() override;

  // The outside world.
  Millis ticks = firstTick;
  int queriesPerTick = 0;           ///< if set, the clocks advance by 1 ms whenever they have been read this often
  double seconds = 43'200;          ///< since midnight
  std::deque<float> scriptedDraws;  ///< returned by Rnd() first; then the generator
  RandomGenerator generator;
  std::string commandLineText;
  std::string path = "/kelvora";  ///< the program's folder
  std::string host = "web.invalid";
  std::map<std::pair<std::string, std::string>, std::string> settings;  ///< by section and key
  std::set<std::string> missingFiles;  ///< paths of sounds and tracks to report as missing
  PlayState playState = psReady;       ///< of the music player; its commands and the owner set it
  /// If set, supplies the picture for a path instead of the file.
  std::function<PicturePointer(const std::string& path)> pictureSource;

  /// Advances both clocks.
  void advance(Millis ms);
  /// Queues an event for the next DoEvents.
  void post(std::function<void()> event) { events_.push_back(std::move(event)); }
  /// Called while a message box is open, before it is answered.
  std::function<void(const std::string& text)> onMessageBox;
  /// Called while a modal form is open. If it leaves the form visible, the form is hidden afterwards.
  std::function<void(Form& form)> onModal;
  /// Called first in every DoEvents.
  std::function<void()> onDoEvents;

  // The game's actions.
  std::vector<std::string> messageBoxes;
  std::vector<std::string> modalForms;  ///< captions
  std::vector<std::pair<int, int>> pointerPlacements;
  std::vector<float> seeds;
  std::vector<std::string> soundCommands;  ///< commands for each effect's device in order, such as "bounce.wav play"
  std::vector<std::string> tracks;         ///< paths passed to the music player
  int doEventsCount = 0;
  bool lastMayWait = false;  ///< argument of the last DoEvents
  /// Calls in order: "read section/key", "write section/key=text", "picture path", "sound bounce.wav play", "track
  /// path", "connect host:port", "randomize", "show caption", "hide caption", "modal caption", "box text", "DoEvents",
  /// "end".
  std::vector<std::string> journal;

  /// The control that last requested the keyboard focus; null if it has been destroyed.
  Control* focus() const;
  /// The far end of a socket.
  HeadlessSocket& socketOf(const Winsock& socket);

  Millis tickCount() override;
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
  int tickQueries_ = 0;
};

}  // namespace kelvora
