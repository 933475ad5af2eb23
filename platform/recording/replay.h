#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "base/randomGenerator.h"
#include "platform/backend.h"
#include "platform/recording/format.h"
#include "platform/recording/gameState.h"
#include "platform/recording/stream.h"
#include "platform/seamWatch.h"
#include "raster/font.h"

namespace kelvora {

class Control;
class Form;

namespace recording {

class ReplayedSocket;

/// Why a replay has ended. Thrown through the game to the caller that started it.
struct ReplayEnd {
  enum class Reason {
    Ended,     ///< the recording is over
    Fault,     ///< a handler of the game has failed
    Diverged,  ///< the game asks for something else than the recorded one
    Damaged,   ///< the recording makes no sense
    Stopped,   ///< `onFrame` has asked for it
  };
  Reason reason = Reason::Ended;
  std::string text;
};

/// A sound that the game plays or stops.
struct Sounding {
  std::string file;
  bool isMusic = false;
  bool starts = false;
};

/// A comparison that has failed.
struct Difference {
  std::uint64_t frame = 0;
  Millis time = 0;                 ///< ms since the start
  std::vector<std::string> parts;  ///< names
};

/// A backend without a screen that lets the game live through a recording again. The recording is untrusted: whatever
/// it contains, the replay ends in one of the ways of ReplayEnd or with Damaged, and memory stays bounded.
class Replay : public Backend, private SeamWatch {
 public:
  /// `dataFolder` holds the pictures. Throws Damaged if the recording has no head.
  Replay(Reader::Source source, std::string dataFolder, GameState state);
  ~Replay() override;

  /// Called at the end of each frame, before its events. Returns false to stop.
  std::function<bool()> onFrame;
  /// Called before time passes between the game's calls, with the time since the start that follows. The game rests
  /// meanwhile, and nothing changes before then.
  std::function<void(Millis next)> onPause;
  /// Called when the game plays or stops an audible sound.
  std::function<void(const Sounding& sounding)> onSound;
  /// Reads a picture. By default from its file.
  std::function<PicturePointer(const std::string& path)> pictureSource;

  const std::string& version() const { return version_; }  ///< of the program that recorded
  std::uint64_t frames() const { return frames_; }
  Millis elapsed() const { return now_ - start_; }  ///< ms
  std::uint64_t checks() const { return checks_; }
  /// The first failed comparisons, at most ten.
  const std::vector<Difference>& differences() const { return differences_; }
  /// The forms that exist, by their number in the recording. Others are null.
  const std::vector<Form*>& forms() const { return live_->forms; }
  /// The texts of the open message boxes, from the outermost to the innermost.
  const std::vector<std::string>& boxes() const { return boxes_; }
  /// The fault that has ended the recorded game; empty if none has.
  const std::string& recordedFault() const { return recordedFault_; }

  /// Reads the fault that the recorded game had at this point, if it had one.
  void readFault();

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
  std::string applicationPath() override { return dataFolder_; }
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
  friend class ReplayedPeer;
  friend class ReplayedSocket;
  friend class ReplayedSound;
  friend class ReplayedMusic;
  class Glyphs;

  /// Forms and sockets by number, null once destroyed. They and sounds may outlive the replay.
  struct Live {
    std::vector<Form*> forms;
    std::vector<ReplayedSocket*> sockets;
    Replay* replay = nullptr;  ///< null once it has been destroyed

    void tell(const Sounding& sounding) const;
  };
  using FontKey = std::tuple<std::string, float, bool>;

  /// The kind of the next record. Takes all glyphs that precede it.
  Kind next();
  void consume();
  /// Consumes the kind of what the game asks for.
  void expect(Kind kind);
  /// A call of the game that may have let the world in.
  void command();
  /// Plays what happened until the call returned.
  void playUntilReturn();
  void playRecord(Kind kind);
  void playEvent();
  void playSocketEvent();
  void adopt();
  void compare();
  FontKey readFont();
  void takeGlyph();
  void takeLineHeight();
  Millis readTime();
  /// Lets time pass while the game rests.
  void rest();
  Control& readControl();
  template <class Handler>
  void runHandler(const Handler& handler);

  void peerCallBegins() override { command(); }
  void peerCallEnds() override {}
  void adopted(Control&, PropertyId) override {}

  Reader reader_;
  std::string dataFolder_;
  GameState state_;
  std::string version_;
  std::unique_ptr<Glyphs> glyphSource_;
  GlyphSource* glyphSourceBefore_;
  RandomGenerator generator_;
  Millis now_ = 0;
  Millis start_ = 0;
  std::int64_t startOfDay_ = 0;  ///< ms since midnight
  std::uint64_t calls_ = 0;      ///< of the game since the last record
  std::optional<Kind> next_;
  std::uint64_t nextCall_ = 0;  ///< number of the call to which the next record belongs
  std::uint64_t frames_ = 0;
  std::uint64_t checks_ = 0;
  int handlers_ = 0;
  int nesting_ = 0;
  std::shared_ptr<Live> live_;
  std::vector<std::string> boxes_;
  std::map<FontKey, std::map<unsigned char, Glyph>> glyphs_;
  std::map<FontKey, int> lineHeights_;
  std::size_t glyphBytes_ = 0;
  std::vector<std::string> partNames_;
  std::vector<Difference> differences_;
  std::string recordedFault_;
};

}  // namespace recording
}  // namespace kelvora
