#pragma once

#include <cstdio>
#include <string>

#include "platform/backend.h"
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
  /// Ends the film. False after an error.
  virtual bool finish() { return error_.empty(); }
  /// Empty if there is none.
  const std::string& error() const { return error_; }

 protected:
  virtual void take(const Picture& picture) = 0;
  void fail(const std::string& error) { error_ = error; }

 private:
  std::string error_;
  Millis next_ = 0;  ///< when the next picture is due
};

/// A folder of PNG files, 000001.png and so on. Creates it.
class FrameFolder : public Film {
 public:
  explicit FrameFolder(std::string folder);

 private:
  void take(const Picture& picture) override;

  std::string folder_;
  int count_ = 0;
};

/// A video file made by ffmpeg, as large as the first picture. It replaces an existing file.
class Video : public Film {
 public:
  explicit Video(std::string file) : file_(std::move(file)) {}
  ~Video() override;
  bool finish() override;

 private:
  void take(const Picture& picture) override;
  void open();

  std::string file_;
  std::FILE* pipe_ = nullptr;
  int width_ = 0;
  int height_ = 0;
};

}  // namespace kelvora
