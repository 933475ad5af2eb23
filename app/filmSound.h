#pragma once

#include <cstdint>
#include <fstream>
#include <memory>
#include <string>

#include "platform/backend.h"
#include "platform/recording/replay.h"

namespace kelvora {

class Soundtrack;

/// The sound of a film: a file of its samples, without a head, those of both speakers interleaved.
class FilmSound {
 public:
  FilmSound(const std::string& file, std::unique_ptr<Soundtrack> track);
  ~FilmSound();
  FilmSound(const FilmSound&) = delete;
  FilmSound& operator=(const FilmSound&) = delete;

  /// Plays or stops a sound `at` ms of the film. False if the file can't be written.
  bool play(const recording::Sounding& sounding, Millis at);
  /// Ends the sound with the film. False if the file can't be written.
  bool finish(Millis end);

 private:
  /// Writes the samples before this time. Samples are final once written.
  void writeUntil(Millis time);

  std::ofstream file_;
  std::unique_ptr<Soundtrack> track_;
  std::int64_t written_ = 0;  ///< samples for each speaker
};

}  // namespace kelvora
