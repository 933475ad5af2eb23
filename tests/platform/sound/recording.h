#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "generated/sourceFolder.h"
#include "platform/sound/soundFiles.h"
#include "tests/support/temporaryFolder.h"

namespace kelvora {

using Samples = std::vector<std::int16_t>;

/// Sets environment variables and restores them in its destructor.
class ScopedEnvironment {
 public:
  ScopedEnvironment() = default;
  ~ScopedEnvironment() {
    for (const auto& [name, value] : before_) {
      value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
    }
  }
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

  void set(const std::string& name, const std::string& value) {
    const char* old = std::getenv(name.c_str());
    before_.emplace(name, old ? std::optional<std::string>(old) : std::nullopt);
    setenv(name.c_str(), value.c_str(), 1);
  }

 private:
  std::map<std::string, std::optional<std::string>> before_;
};

/// Polls until `isDone()` holds. False after a minute.
inline bool waitFor(const std::function<bool()>& isDone) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (!isDone()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

/// Writes a wave file of 16 bits.
inline void writeWave(const std::filesystem::path& file, const Samples& samples, std::size_t speakers = 1,
                      std::size_t rate = sampleRate) {
  std::ofstream out(file, std::ios::binary);
  const auto number = [&out](std::size_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) out.put(static_cast<char>(value >> (8 * i)));
  };
  const std::size_t size = samples.size() * 2;
  out << "RIFF";
  number(36 + size, 4);
  out << "WAVEfmt ";
  number(16, 4);
  number(1, 2);
  number(speakers, 2);
  number(rate, 4);
  number(rate * speakers * 2, 4);
  number(speakers * 2, 2);
  number(16, 2);
  out << "data";
  number(size, 4);
  for (const std::int16_t sample : samples) number(static_cast<std::uint16_t>(sample), 2);
}

/// Copies the first bytes of a track of the game: about 14,000 a second.
inline std::string cutTrack(const char* name, std::uintmax_t bytes, const std::filesystem::path& copy) {
  std::filesystem::copy_file(std::filesystem::path(KELVORA_SOURCE_DIR "/sounds") / name, copy);
  std::filesystem::resize_file(copy, bytes);
  return copy.string();
}

/// All samples of a track, interleaved.
inline Samples decode(const std::string& file) {
  Samples samples;
  const std::unique_ptr<Track> track = openMp3(file);
  if (!track) return samples;
  Samples block(2048);
  bool isMore = true;
  while (isMore) {
    isMore = track->read(block);
    samples.insert(samples.end(), block.begin(), block.end());
  }
  return samples;
}

/// Makes a file the sound device, which each opening empties. `left()` and `right()` return the samples written since.
class Recording {
 public:
  explicit Recording(const std::filesystem::path& file) : file_(file) {
    environment_.set("SDL_AUDIODRIVER", "disk");
    environment_.set("SDL_DISKAUDIOFILE", file.string());
  }

  /// True while this process has the device open.
  bool isOpen() const {
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
      std::error_code closed;
      if (std::filesystem::read_symlink(entry.path(), closed) == file_) return true;
    }
    return false;
  }
  const std::filesystem::path& file() const { return file_; }
  Samples left() const { return speaker(0); }
  Samples right() const { return speaker(1); }

 private:
  Samples speaker(std::size_t which) const {
    std::ifstream in(file_, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    Samples samples;
    for (std::size_t at = 2 * which; at + 4 <= bytes.size() + 2 * which; at += 4) {
      const auto low = static_cast<unsigned char>(bytes[at]);
      const auto high = static_cast<unsigned char>(bytes[at + 1]);
      samples.push_back(static_cast<std::int16_t>(low | (high << 8)));
    }
    return samples;
  }

  std::filesystem::path file_;
  ScopedEnvironment environment_;
};

}  // namespace kelvora
