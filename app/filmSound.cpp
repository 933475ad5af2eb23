#include "app/filmSound.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <utility>

#include "platform/sound/mix.h"
#include "platform/sound/soundtrack.h"

namespace kelvora {

FilmSound::FilmSound(const std::string& file, std::unique_ptr<Soundtrack> track)
    : file_(file, std::ios::binary), track_(std::move(track)) {}

FilmSound::~FilmSound() = default;

void FilmSound::writeUntil(Millis time) {
  constexpr std::int64_t blockSize = 1024;
  std::array<std::int16_t, 2 * blockSize> block;
  const std::int64_t end = time * sampleRate / 1000;
  while (written_ < end && file_) {
    const std::int64_t count = std::min(blockSize, end - written_);
    const std::span<std::int16_t> samples(block.data(), static_cast<std::size_t>(2 * count));
    track_->read(samples);
    file_.write(reinterpret_cast<const char*>(samples.data()), static_cast<std::streamsize>(samples.size_bytes()));
    written_ += count;
  }
}

bool FilmSound::play(const recording::Sounding& sounding, Millis at) {
  writeUntil(at);
  if (sounding.isMusic) {
    sounding.starts ? track_->startMusic(sounding.file) : track_->stopMusic();
  } else {
    sounding.starts ? track_->startEffect(sounding.file) : track_->stopEffect(sounding.file);
  }
  return file_.good();
}

bool FilmSound::finish(Millis end) {
  writeUntil(end);
  file_.close();
  return file_.good();
}

}  // namespace kelvora
