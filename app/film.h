#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "app/filmSound.h"
#include "platform/backend.h"
#include "platform/recording/replay.h"
#include "raster/picture.h"

namespace kelvora {

/// Takes pictures of the canvas at a steady rate while a game runs. Where nothing is painted for long, such as before
/// the login, a second of it remains.
class Film {
 public:
  static constexpr int picturesPerSecond = 25;

  virtual ~Film() = default;
  /// Called after each frame with the time since the start, in ms. Returns false after an error.
  bool add(Millis now);
  /// Called when the game plays or stops a sound, with the time since the start, in ms.
  void hear(const recording::Sounding& sounding, Millis now);
  /// Ends the film. False after an error.
  virtual bool finish() { return error_.empty(); }
  /// Empty if there is none.
  const std::string& error() const { return error_; }

 protected:
  static constexpr Millis interval = 1000 / picturesPerSecond;

  virtual void take(const Picture& picture) = 0;
  /// A sound begins or ends `at` ms of the film.
  virtual void play(const recording::Sounding&, Millis /*at*/) {}
  void fail(const std::string& error) { error_ = error; }
  std::int64_t pictures() const { return pictures_; }  ///< so far, with the one that is being taken

 private:
  /// Shortens a pause that is too long.
  void cut(Millis now);

  std::string error_;
  std::int64_t pictures_ = 0;
  Millis next_ = 0;  ///< when the next picture is due
};

/// A folder of PNG files, 000001.png and so on. Creates it.
class FrameFolder : public Film {
 public:
  explicit FrameFolder(std::string folder);

 private:
  void take(const Picture& picture) override;

  std::string folder_;
};

/// A video file with sound, made by ffmpeg, as large as the first picture. It replaces an existing file. Pictures and
/// sound are kept in a folder beside it until they are put together.
class Video : public Film {
 public:
  explicit Video(std::string file);
  ~Video() override;
  bool finish() override;

 private:
  void take(const Picture& picture) override;
  void play(const recording::Sounding& sounding, Millis at) override;
  void prepare();
  void open();
  std::string picturesFile() const;
  std::string soundFile() const { return folder_ + "/sound"; }

  std::string file_;
  std::string folder_;  ///< empty if there is none
  std::unique_ptr<FilmSound> sound_;
  std::FILE* pipe_ = nullptr;
  int width_ = 0;
  int height_ = 0;
};

}  // namespace kelvora
