#include <SDL.h>
#include <mpg123.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/sound/soundFiles.h"

namespace kelvora {

namespace {

struct DeleteDecoder {
  void operator()(mpg123_handle* decoder) const { mpg123_delete(decoder); }
};
using Decoder = std::unique_ptr<mpg123_handle, DeleteDecoder>;

struct FreeStream {
  void operator()(SDL_AudioStream* stream) const { SDL_FreeAudioStream(stream); }
};

/// Decoded and converted to the mix's rate piece by piece.
class Mp3Track final : public Track {
 public:
  explicit Mp3Track(Decoder decoder) : decoder_(std::move(decoder)) {}

  bool read(std::span<std::int16_t> stereo) override;
  /// Decodes until more than `bytes` are waiting or the track has ended. False if nothing is waiting.
  bool decode(int bytes);

 private:
  int waiting() const { return stream_ ? SDL_AudioStreamAvailable(stream_.get()) : 0; }
  bool decodeNext();
  bool adoptRate();

  Decoder decoder_;
  std::unique_ptr<SDL_AudioStream, FreeStream> stream_;
  long rate_ = 0;
  bool hasEnded_ = false;
};

bool Mp3Track::adoptRate() {
  long rate = 0;
  int channels = 0;
  int encoding = 0;
  if (mpg123_getformat(decoder_.get(), &rate, &channels, &encoding) != MPG123_OK) return false;
  if (rate == rate_) return true;
  rate_ = rate;
  stream_.reset(SDL_NewAudioStream(AUDIO_S16SYS, 2, static_cast<int>(rate), AUDIO_S16SYS, 2, sampleRate));
  return stream_ != nullptr;
}

/// False at the end of the file, or if it is broken.
bool Mp3Track::decodeNext() {
  std::array<unsigned char, 4 * 1152> frame;
  std::size_t size = 0;
  const int result = mpg123_read(decoder_.get(), frame.data(), frame.size(), &size);
  if (size > 0 && (!stream_ || SDL_AudioStreamPut(stream_.get(), frame.data(), static_cast<int>(size)) != 0)) {
    return false;
  }
  return result == MPG123_OK || (result == MPG123_NEW_FORMAT && adoptRate());
}

bool Mp3Track::decode(int bytes) {
  constexpr int maxTries = 64;  // far more than a block needs, so that a broken file doesn't hold up the mix
  for (int tries = 0; !hasEnded_ && waiting() <= bytes; ++tries) {
    hasEnded_ = tries == maxTries || !decodeNext();
    if (hasEnded_ && stream_) SDL_AudioStreamFlush(stream_.get());
  }
  return waiting() > 0;
}

bool Mp3Track::read(std::span<std::int16_t> stereo) {
  const int wanted = static_cast<int>(stereo.size_bytes());
  decode(wanted);
  const int got = stream_ ? SDL_AudioStreamGet(stream_.get(), stereo.data(), wanted) : 0;
  const auto samples = static_cast<std::size_t>(std::max(got, 0)) / sizeof(std::int16_t);
  std::fill(stereo.begin() + static_cast<std::ptrdiff_t>(samples), stereo.end(), std::int16_t{0});
  return waiting() > 0;
}

}  // namespace

std::unique_ptr<Track> openMp3(const std::string& file) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) return nullptr;
  Decoder decoder(mpg123_new(nullptr, nullptr));
  if (!decoder) return nullptr;
  mpg123_param(decoder.get(), MPG123_ADD_FLAGS, MPG123_QUIET | MPG123_SKIP_ID3V2, 0);
  mpg123_param(decoder.get(), MPG123_INDEX_SIZE, 0, 0);  // it never seeks
  if (mpg123_format_none(decoder.get()) != MPG123_OK) return nullptr;
  if (mpg123_format2(decoder.get(), 0, MPG123_STEREO, MPG123_ENC_SIGNED_16) != MPG123_OK) return nullptr;
  if (mpg123_open(decoder.get(), file.c_str()) != MPG123_OK) return nullptr;
  auto track = std::make_unique<Mp3Track>(std::move(decoder));
  return track->decode(0) ? std::move(track) : nullptr;
}

}  // namespace kelvora
