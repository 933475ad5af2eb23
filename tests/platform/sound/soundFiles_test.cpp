#include "platform/sound/soundFiles.h"

#include <SDL.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>

#include "tests/platform/sound/recording.h"

namespace kelvora {
namespace {

std::size_t largestRequest = 0;

/// Notes the largest block of memory that SDL has asked for.
class WatchedMemory {
 public:
  WatchedMemory() {
    largestRequest = 0;
    SDL_GetMemoryFunctions(&malloc_, &calloc_, &realloc_, &free_);
    SDL_SetMemoryFunctions(watchedMalloc, watchedCalloc, watchedRealloc, std::free);
  }
  ~WatchedMemory() { SDL_SetMemoryFunctions(malloc_, calloc_, realloc_, free_); }
  WatchedMemory(const WatchedMemory&) = delete;
  WatchedMemory& operator=(const WatchedMemory&) = delete;

 private:
  static std::size_t note(std::size_t size) { return largestRequest = std::max(largestRequest, size), size; }
  static void* watchedMalloc(std::size_t size) { return std::malloc(note(size)); }
  static void* watchedCalloc(std::size_t count, std::size_t size) { return std::calloc(1, note(count * size)); }
  static void* watchedRealloc(void* block, std::size_t size) { return std::realloc(block, note(size)); }

  SDL_malloc_func malloc_ = nullptr;
  SDL_calloc_func calloc_ = nullptr;
  SDL_realloc_func realloc_ = nullptr;
  SDL_free_func free_ = nullptr;
};

Samples sine(double seconds, int rate, double height = 10'000) {
  Samples samples;
  for (int i = 0; i < seconds * rate; ++i) {
    samples.push_back(static_cast<std::int16_t>(height * std::sin(i * 440 * 6.283185307179586 / rate)));
  }
  return samples;
}

int largest(const Samples& samples) {
  int size = 0;
  for (const int sample : samples) size = std::max(size, std::abs(sample));
  return size;
}

class SoundFiles : public ::testing::Test {
 protected:
  std::string path(const char* name) const { return (folder.path() / name).string(); }
  std::string write(const char* name, const std::string& bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
    return path(name);
  }
  std::string wave(const Samples& samples, std::size_t speakers = 1, std::size_t rate = sampleRate) const {
    writeWave(path("effect.wav"), samples, speakers, rate);
    return bytesOf(path("effect.wav"));
  }
  static std::string bytesOf(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }

  TemporaryFolder folder;
};

TEST_F(SoundFiles, AnEffectInTheMixesFormatIsLoadedAsItIs) {
  const Samples shape{0, 1, -1, 32'767, -32'768, 77};
  EXPECT_EQ(loadWave(write("a.wav", wave(shape))).samples, shape);
  EXPECT_FALSE(loadWave(path("a.wav")).isStereo);
  EXPECT_EQ(loadWave(write("b.wav", wave(shape, 2))).samples, shape);
  EXPECT_TRUE(loadWave(path("b.wav")).isStereo);
}

TEST_F(SoundFiles, EffectsOfOtherRatesKeepTheirLengthAndLoudness) {
  for (const int rate : {8'000, 22'050, 48'000, 96'000}) {
    const Effect effect = loadWave(write("a.wav", wave(sine(0.5, rate), 1, static_cast<std::size_t>(rate))));
    EXPECT_NEAR(static_cast<double>(effect.samples.size()) / sampleRate, 0.5, 0.001) << rate;
    EXPECT_NEAR(largest(effect.samples), 10'000, 500) << rate;
  }
}

TEST_F(SoundFiles, AnEffectOfBytesIsLoaded) {
  std::string bytes = wave(Samples{0});
  bytes.resize(bytes.size() - 2);
  bytes[32] = 1;  // bytes a sample
  bytes[34] = 8;  // bits a sample
  bytes[40] = 3;  // length
  const Samples samples = loadWave(write("a.wav", bytes + std::string("\x80\xFF\x00", 3))).samples;
  ASSERT_EQ(samples.size(), 3U);
  EXPECT_NEAR(samples[0], 0, 256);
  EXPECT_NEAR(samples[1], 32'767, 512);
  EXPECT_NEAR(samples[2], -32'768, 512);
}

TEST_F(SoundFiles, LimitsAnEffect) {
  const std::size_t rate = 8'000;
  const Samples allowed(rate * maxEffectSeconds, 1'000);
  EXPECT_FALSE(loadWave(write("a.wav", wave(allowed, 1, rate))).samples.empty());
  const Samples tooLong(allowed.size() + 1, 1'000);
  EXPECT_TRUE(loadWave(write("a.wav", wave(tooLong, 1, rate))).samples.empty());
  EXPECT_TRUE(loadWave(write("a.wav", wave({1, 2, 3}, 1, 1))).samples.empty()) << "one sample a second";
  EXPECT_TRUE(loadWave(write("a.wav", wave({1, 2, 3}, 1, 2'000'000'000))).samples.empty());
  EXPECT_TRUE(loadWave(write("a.wav", wave({1, 2, 3}, 0))).samples.empty()) << "no speakers";
  EXPECT_TRUE(loadWave(write("a.wav", wave(Samples(60'000, 1), 30'000))).samples.empty());
  write("a.wav", wave({1, 2, 3}));
  std::filesystem::resize_file(path("a.wav"), maxWaveBytes + 1);
  EXPECT_TRUE(loadWave(path("a.wav")).samples.empty());
}

TEST_F(SoundFiles, AnEffectThatClaimsToBeHugeTakesOnlyItsOwnMemory) {
  std::string bytes = wave(Samples(1'000, 5));
  for (const std::size_t field : {std::size_t{4}, std::size_t{16}, std::size_t{40}}) {
    for (std::size_t i = 0; i < 4; ++i) bytes[field + i] = '\xFE';
    write("a.wav", bytes);
    const WatchedMemory watch;
    loadWave(path("a.wav"));
    EXPECT_LT(largestRequest, 100'000U) << field;
  }
}

TEST_F(SoundFiles, ATruncatedEffectIsLoadedUpToItsEnd) {
  std::string bytes = wave(Samples(1'000, 5));
  bytes.resize(bytes.size() - 600);
  EXPECT_EQ(loadWave(write("a.wav", bytes)).samples, Samples(700, 5));
}

TEST_F(SoundFiles, ThatAreNoSoundsAreNotLoaded) {
  for (const char* name : {"", "nowhere", "."}) {
    EXPECT_TRUE(loadWave(path(name)).samples.empty()) << name;
    EXPECT_EQ(openMp3(path(name)), nullptr) << name;
  }
  for (const char* bytes : {"", "RIFF", "RIFF....WAVE and then garbage", "ID3", "no music"}) {
    write("a", bytes);
    EXPECT_TRUE(loadWave(path("a")).samples.empty()) << bytes;
    EXPECT_EQ(openMp3(path("a")), nullptr) << bytes;
  }
  EXPECT_EQ(openMp3("/dev/zero"), nullptr);
}

TEST_F(SoundFiles, ATrackIsDecodedAlikeInBlocksOfAnySize) {
  const std::string file = cutTrack("music1.mp3", 30'000, path("track.mp3"));
  const Samples whole = decode(file);
  ASSERT_GT(whole.size(), 2U * sampleRate);
  const auto track = openMp3(file);
  ASSERT_NE(track, nullptr);
  Samples joined;
  bool isMore = true;
  for (std::size_t size = 2; isMore; size = size % 6'000 + 2) {
    Samples block(size);
    isMore = track->read(block);
    joined.insert(joined.end(), block.begin(), block.end());
  }
  const std::size_t common = std::min(whole.size(), joined.size());
  EXPECT_TRUE(std::equal(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(common), joined.begin()));
  const auto isSilent = [](std::int16_t sample) { return sample == 0; };
  EXPECT_TRUE(std::all_of(whole.begin() + static_cast<std::ptrdiff_t>(common), whole.end(), isSilent));
  EXPECT_TRUE(std::all_of(joined.begin() + static_cast<std::ptrdiff_t>(common), joined.end(), isSilent));
}

TEST_F(SoundFiles, ATrackEndsInTheBlockOfItsLastSample) {
  const std::string file = cutTrack("music1.mp3", 20'000, path("track.mp3"));
  std::size_t length = 0;
  for (const auto track = openMp3(file); track->read(*std::make_unique<Samples>(2));) length += 2;
  length += 2;
  Samples all(length);
  EXPECT_FALSE(openMp3(file)->read(all)) << "exactly its length";
  all.resize(length - 2);
  EXPECT_TRUE(openMp3(file)->read(all)) << "one sample is left";
}

TEST_F(SoundFiles, ATrackThatIsTruncatedWhileItPlaysEnds) {
  const std::string file = cutTrack("music1.mp3", 400'000, path("track.mp3"));
  const auto track = openMp3(file);
  ASSERT_NE(track, nullptr);
  Samples block(2'048);
  EXPECT_TRUE(track->read(block));
  std::filesystem::resize_file(file, 0);
  int blocks = 0;
  while (track->read(block) && blocks < 1'000) ++blocks;
  EXPECT_LT(blocks, 100);
}

TEST_F(SoundFiles, ATrackThatIsOverwrittenWhileItPlaysEnds) {
  const std::string file = cutTrack("music1.mp3", 400'000, path("track.mp3"));
  const auto track = openMp3(file);
  ASSERT_NE(track, nullptr);
  Samples block(2'048);
  EXPECT_TRUE(track->read(block));
  {
    std::fstream out(file, std::ios::binary | std::ios::in | std::ios::out);
    out << std::string(400'000, '\xAA');
  }
  int blocks = 0;
  while (track->read(block) && blocks < 10'000) ++blocks;
  EXPECT_LT(blocks, 10'000);
}

/// Changes some bytes, most often in the head, and sometimes cuts the rest off.
std::string spoiled(std::string bytes, std::mt19937& random) {
  const auto below = [&random](std::size_t limit) { return random() % limit; };
  for (std::size_t changes = 1 + below(6); changes > 0; --changes) {
    const std::size_t at = below(below(3) == 0 ? bytes.size() : std::min<std::size_t>(bytes.size(), 64));
    constexpr char extremes[] = {'\0', '\x01', '\x7F', '\x80', '\xFF'};
    bytes[at] = below(2) == 0 ? extremes[below(5)] : static_cast<char>(below(256));
  }
  if (below(8) == 0) bytes.resize(below(bytes.size()) + 1);
  return bytes;
}

TEST_F(SoundFiles, SpoiledEffectsStayWithinTheLimits) {
  std::mt19937 random(1);
  const std::string whole = wave(sine(0.02, sampleRate));
  int loaded = 0;
  for (int i = 0; i < 2'000; ++i) {
    const Effect effect = loadWave(write("a.wav", spoiled(whole, random)));
    ASSERT_LE(effect.samples.size(), (maxEffectSeconds + 1U) * sampleRate * 2U) << i;
    loaded += effect.samples.empty() ? 0 : 1;
  }
  EXPECT_GT(loaded, 200) << "some survive";
  EXPECT_LT(loaded, 1'900) << "some don't";
}

TEST_F(SoundFiles, SpoiledTracksEnd) {
  std::mt19937 random(2);
  const std::string whole = bytesOf(cutTrack("music1.mp3", 6'000, path("track.mp3")));
  int played = 0;
  for (int i = 0; i < 1'000; ++i) {
    const auto track = openMp3(write("a.mp3", spoiled(whole, random)));
    if (!track) continue;
    Samples block(2'048);
    int blocks = 0;
    while (track->read(block) && blocks < 10'000) ++blocks;
    ASSERT_LT(blocks, 10'000) << i;
    ++played;
  }
  EXPECT_GT(played, 100);
}

}  // namespace
}  // namespace kelvora
