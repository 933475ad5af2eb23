#pragma once

#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>
#include <string>

#include "app/filmSound.h"
#include "platform/backend.h"
#include "platform/recording/replay.h"
#include "raster/picture.h"

namespace kelvora {

/// The part of a game that becomes a film, in ms since its start.
struct FilmRange {
  Millis from = 0;
  Millis to = std::numeric_limits<Millis>::max();
};

/// Takes pictures of the canvas at a steady rate while a game runs. Where nothing is painted for long, such as before
/// the login, a second of it remains. A track that plays when the range begins, begins with it.
class Film {
 public:
  static constexpr int picturesPerSecond = 25;

  explicit Film(FilmRange range) : range_(range), next_(range.from) {}
  virtual ~Film() = default;
  Film(const Film&) = delete;
  Film& operator=(const Film&) = delete;
  /// Called after each frame with the time since the start, in ms. Returns false after an error and at the range's end.
  bool add(Millis now);
  /// Called when the game plays or stops a sound, with the time since the start, in ms.
  void hear(const recording::Sounding& sounding, Millis now);
  /// Ends the film. False after an error, or if there is no picture in the range.
  bool finish();
  /// The written files, as a line for people.
  virtual std::string result() const = 0;
  /// Empty if there is none.
  const std::string& error() const { return error_; }

 protected:
  static constexpr Millis interval = 1000 / picturesPerSecond;

  virtual void take(const Picture& picture) = 0;
  /// Puts the pictures together.
  virtual void conclude() {}
  /// A sound begins or ends `at` ms of the film.
  virtual void play(const recording::Sounding&, Millis /*at*/) {}
  void fail(const std::string& error) { error_ = error; }
  std::int64_t pictures() const { return pictures_; }  ///< so far, with the one that is being taken

 private:
  /// Shortens a pause that is too long.
  void cut(Millis now);
  void startTrack();

  const FilmRange range_;
  std::string error_;
  std::string track_;  ///< the music that plays when the range begins
  std::int64_t pictures_ = 0;
  Millis next_;  ///< when the next picture is due
};

/// A folder of PNG files, 000001.png and so on. Creates it.
class FrameFolder : public Film {
 public:
  explicit FrameFolder(std::string folder, FilmRange range = {});
  std::string result() const override;

 private:
  void take(const Picture& picture) override;

  std::string folder_;
};

/// A video file with sound, made by ffmpeg, as large as the first picture. Pictures and sound are kept in a folder
/// beside it until they are put together. Then it replaces an existing file.
class Video : public Film {
 public:
  explicit Video(std::string file, FilmRange range = {});
  ~Video() override;
  std::string result() const override;

 private:
  void conclude() override;
  void take(const Picture& picture) override;
  void play(const recording::Sounding& sounding, Millis at) override;
  void prepare();
  void open();
  /// A part of the film. The film's extension tells ffmpeg the format.
  std::string part(const std::string& name) const;
  std::string soundFile() const { return folder_ + "/sound"; }
  std::string messagesFile() const { return folder_ + "/messages"; }  ///< ffmpeg's messages
  /// The command for ffmpeg with these arguments, both words for the shell.
  std::string ffmpeg(const std::string& arguments) const;
  /// Says why ffmpeg has failed.
  void failWithFfmpegsReason();

  std::string file_;
  std::string folder_;  ///< empty if there is none
  std::unique_ptr<FilmSound> sound_;
  std::FILE* pipe_ = nullptr;
  int width_ = 0;
  int height_ = 0;
};

}  // namespace kelvora
