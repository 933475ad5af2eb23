#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/randomGenerator.h"
#include "platform/backend.h"
#include "platform/recording/format.h"
#include "platform/recording/gameState.h"
#include "platform/recording/stream.h"
#include "platform/seamWatch.h"

namespace kelvora {

class Control;
class IntervalTimer;

namespace recording {

class RecordedGlyphs;
class RecordedSocket;
/// By number, null once destroyed. A socket may be destroyed after the recorder, but not used any more.
using RecordedSockets = std::vector<RecordedSocket*>;

/// Stands between the game and a backend and writes down what reaches the game, and when. Clock, random numbers and the
/// time of day come from here, so that the same numbers come again. It neither sends nor shows anything by itself. The
/// game may end at any time, and loses at most a second of its recording.
class Recorder : public Backend, private SeamWatch {
 public:
  /// Records the game on `inner`, which is installed. Both backends outlive the game.
  Recorder(Backend& inner, std::unique_ptr<Sink> sink, GameState state);
  ~Recorder() override;

  /// False after the end, and once the sink has failed, for example on a full disk. The game goes on, unrecorded.
  bool isRecording() const { return !isOver_ && writer_.isGood(); }
  /// Called once, after the sink has failed.
  std::function<void()> onLoss;
  /// Records that a fault is about to end the game, and ends the recording.
  void fault(const std::string& what);

  Millis tickCount() override;
  float secondsSinceMidnight() override;
  float random() override { return generator_.next(); }
  float random(float argument) override { return generator_.next(argument); }
  void randomize(float seed) override { generator_.randomize(seed); }

  void doEvents(bool mayWait) override;
  void messageBox(const std::string& text) override;
  [[noreturn]] void endProcess() override;
  void placePointer(int x, int y) override;
  std::string commandLine() override;
  std::string applicationPath() override { return inner_.applicationPath(); }
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
  friend class RecordedSocket;
  friend class RecordedSound;
  friend class RecordedMusic;
  friend class RecordedGlyphs;

  /// Where the program is.
  struct Place {
    bool isInGame = true;  ///< in the game, or in the backend
    bool isOpen = false;   ///< the current call has a record
    bool mayWait = false;  ///< the current call may sleep
    int handlers = 0;      ///< running
  };

  /// Runs a call of the game that lets the world in. `isAwaited` calls always get a record.
  template <class Call>
  auto callOut(bool isAwaited, bool mayWait, Call&& call) {
    if (!place_.isInGame) return call();
    const Leave leave(*this, isAwaited, mayWait);
    return call();
  }
  template <class Call>
  auto command(Call&& call) {
    return callOut(false, false, std::forward<Call>(call));
  }

  /// Leaves the game as long as it exists.
  class Leave {
   public:
    Leave(Recorder& recorder, bool isAwaited, bool mayWait)
        : recorder_(recorder), before_(recorder.leave(isAwaited, mayWait)) {}
    ~Leave() { recorder_.comeBack(before_); }
    Leave(const Leave&) = delete;
    Leave& operator=(const Leave&) = delete;

   private:
    Recorder& recorder_;
    Place before_;
  };
  /// Returns where the program was.
  Place leave(bool isAwaited, bool mayWait);
  void comeBack(const Place& before);

  /// Runs a handler of the game. A fault is recorded and passed on.
  template <class Handler>
  void enterGame(const Handler& handler) {
    const Place outside = place_;
    place_ = {true, false, false, outside.handlers + 1};
    try {
      handler();
    } catch (const std::exception& what) {
      fault(what.what());
      place_ = outside;
      throw;
    }
    place_ = outside;
    save();
  }

  /// Begins a record about the world. Opens the game's current call.
  void begin(Kind kind);
  /// The time since the last record.
  void putTime();
  void putSocketStates();
  void putControl(std::uint64_t form, std::uint64_t control);
  void check();
  void save();
  void finish();
  void tellLoss();

  template <class... Arguments>
  void watch(Form& form, std::uint64_t number, std::uint64_t control, EventId id,
             std::function<void(Arguments...)>& handler);
  void watchTimer(std::uint64_t form, std::uint64_t control, IntervalTimer& timer);
  void watchSocket(std::size_t socket, SocketEventId id, std::function<void()>& handler);
  void put(int value) { writer_.whole(value); }
  void put(float value) { writer_.coordinate(value, std::exchange(coordinatePlane_, Plane::Down)); }

  void peerCallBegins() override;
  void peerCallEnds() override;
  void adopted(Control& control, PropertyId id) override;

  Backend& inner_;
  Writer writer_;
  GameState state_;
  std::unique_ptr<RecordedGlyphs> glyphs_;
  RandomGenerator generator_;

  Place place_;
  std::vector<Place> peerCalls_;  ///< where the program was before each
  std::uint64_t calls_ = 0;       ///< of the game since the last record
  std::uint64_t frames_ = 0;
  Plane coordinatePlane_ = Plane::Across;  ///< of the record's next coordinate
  Millis now_ = 0;                         ///< as the game knows it
  Millis start_ = 0;
  Millis saved_ = 0;
  std::int64_t startOfDay_ = 0;  ///< ms since midnight at the start
  std::uint64_t forms_ = 0;
  std::map<const Control*, std::uint64_t> formNumbers_;
  std::shared_ptr<RecordedSockets> sockets_;
  bool isNamed_ = false;  ///< the parts of the state have been named
  bool isOver_ = false;
};

}  // namespace recording
}  // namespace kelvora
