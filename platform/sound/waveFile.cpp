#include <SDL.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <system_error>
#include <vector>

#include "platform/sound/soundFiles.h"

namespace kelvora {

namespace {

using Bytes = std::vector<Uint8>;

Bytes readFile(const std::string& file) {
  namespace fs = std::filesystem;
  std::error_code error;
  const std::uintmax_t size = fs::is_regular_file(file, error) ? fs::file_size(file, error) : 0;
  if (error || size > maxWaveBytes) return {};
  Bytes bytes(size);
  std::ifstream stream(file, std::ios::binary);
  stream.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size));
  bytes.resize(static_cast<std::size_t>(stream.gcount()));
  return bytes;
}

/// Limits the chunks to the file, because SDL allocates as much as a chunk claims to hold.
void cutChunks(Bytes& bytes) {
  constexpr std::size_t header = 8;
  std::size_t at = 12;
  while (at + header <= bytes.size()) {
    Uint32 length = 0;
    std::memcpy(&length, &bytes[at + 4], sizeof length);
    const auto rest = static_cast<Uint32>(bytes.size() - at - header);
    if (const Uint32 claimed = SDL_SwapLE32(length); claimed <= rest) {
      at += header + claimed + claimed % 2;
      continue;
    }
    length = SDL_SwapLE32(rest);
    std::memcpy(&bytes[at + 4], &length, sizeof length);
    return;
  }
}

struct FreeWave {
  void operator()(Uint8* samples) const { SDL_FreeWAV(samples); }
};

/// The rate must be one that sound cards have, so that converting it can't take much memory.
bool isCommon(const SDL_AudioSpec& spec, Uint32 length) {
  constexpr int minRate = 8'000;
  constexpr int maxRate = 192'000;
  if (spec.channels < 1 || spec.channels > 8 || spec.freq < minRate || spec.freq > maxRate) return false;
  const Uint32 frame = SDL_AUDIO_BITSIZE(spec.format) / 8U * spec.channels;
  return length / frame <= static_cast<Uint32>(maxEffectSeconds) * static_cast<Uint32>(spec.freq);
}

void copySamples(Effect& effect, const Uint8* bytes, Uint32 length) {
  effect.samples.resize(length / sizeof(std::int16_t));
  if (!effect.samples.empty()) std::memcpy(effect.samples.data(), bytes, effect.samples.size() * sizeof(std::int16_t));
}

}  // namespace

Effect loadWave(const std::string& file) {
  Bytes bytes = readFile(file);
  if (bytes.empty()) return {};
  cutChunks(bytes);
  SDL_AudioSpec spec{};
  Uint8* loaded = nullptr;
  Uint32 length = 0;
  if (SDL_LoadWAV_RW(SDL_RWFromConstMem(bytes.data(), static_cast<int>(bytes.size())), 1, &spec, &loaded, &length) ==
      nullptr) {
    return {};
  }
  const std::unique_ptr<Uint8, FreeWave> samples(loaded);
  if (!isCommon(spec, length)) return {};
  const bool isStereo = spec.channels > 1;
  SDL_AudioCVT conversion;
  if (SDL_BuildAudioCVT(&conversion, spec.format, spec.channels, spec.freq, AUDIO_S16SYS, isStereo ? 2 : 1,
                        sampleRate) < 0) {
    return {};
  }
  Effect effect{isStereo, {}};
  if (conversion.needed == 0) {
    copySamples(effect, samples.get(), length);
    return effect;
  }
  bytes.resize(std::size_t{length} * static_cast<std::size_t>(conversion.len_mult));
  std::copy(samples.get(), samples.get() + length, bytes.begin());
  conversion.buf = bytes.data();
  conversion.len = static_cast<int>(length);
  if (SDL_ConvertAudio(&conversion) == 0) copySamples(effect, bytes.data(), static_cast<Uint32>(conversion.len_cvt));
  return effect;
}

}  // namespace kelvora
