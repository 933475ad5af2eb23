#include "platform/win32/mp3Decoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "generated/sourceFolder.h"
#include "tests/support/temporaryFolder.h"

namespace kelvora {
namespace {

namespace fs = std::filesystem;

const fs::path sounds = fs::path(KELVORA_SOURCE_DIR) / "sounds";

std::string bytesOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

class Mp3 : public ::testing::Test {
 protected:
  /// The samples of a file with these bytes. Nothing if it can't be played.
  std::vector<std::int16_t> decode(const std::string& bytes) const {
    std::ofstream(file_, std::ios::binary) << bytes;
    return decodeFile(file_);
  }

  static std::vector<std::int16_t> decodeFile(const fs::path& file) {
    std::vector<std::int16_t> samples;
    const auto decoder = Mp3Decoder::open(file.wstring());
    if (!decoder) return samples;
    std::vector<char> part(10'000);
    while (const std::size_t length = decoder->read(part)) {
      const std::size_t before = samples.size();
      samples.resize(before + length / 2);
      std::memcpy(&samples[before], part.data(), length);
    }
    return samples;
  }

 private:
  const TemporaryFolder folder_;
  const fs::path file_ = folder_.path() / "track.mp3";
};

constexpr std::size_t samplesOfAFrame = 2 * 1152;

TEST_F(Mp3, DecodesTheWholeTrack) {
  const fs::path file = sounds / "music1.mp3";
  const auto decoder = Mp3Decoder::open(file.wstring());
  ASSERT_TRUE(decoder);
  EXPECT_EQ(decoder->format().nChannels, 2);
  EXPECT_EQ(decoder->format().nSamplesPerSec, 44'100U);
  EXPECT_EQ(decoder->format().wBitsPerSample, 16);
  const auto samples = decodeFile(file);
  constexpr double seconds = 72.05;  // by mpg123, as is the loudness
  EXPECT_NEAR(static_cast<double>(samples.size()) / 2 / 44'100, seconds, 0.1);
  const auto loudest = std::ranges::max(samples);
  EXPECT_NEAR(loudest, 12'648, 10);
}

TEST_F(Mp3, SkipsATagBeforeTheMusic) {
  const std::string music = bytesOf(sounds / "music1.mp3").substr(0, 50'000);
  const auto expected = decode(music);
  ASSERT_GT(expected.size(), 100 * samplesOfAFrame);
  // 300 bytes of tag after its header. Its own bytes look like the beginning of a frame.
  const std::string tag = std::string("ID3\x03\0\0\0\0\x02\x2C", 10) + std::string(300, '\xFF');
  EXPECT_EQ(decode(tag + music), expected);
}

TEST_F(Mp3, PlaysTheFramesOfACutFile) {
  const std::string music = bytesOf(sounds / "music1.mp3");
  const auto samples = decode(music.substr(0, 20'000));
  EXPECT_NEAR(static_cast<double>(samples.size()) / samplesOfAFrame, 56, 2) << "as mpg123 counts them";
}

TEST_F(Mp3, RefusesFilesThatAreNotMusic) {
  EXPECT_TRUE(decode("").empty());
  EXPECT_TRUE(decode("ID3").empty());
  EXPECT_TRUE(decode(std::string(100'000, '\xFF')).empty());
  EXPECT_TRUE(decode(bytesOf(sounds / "capture.wav")).empty());
  EXPECT_TRUE(decodeFile(sounds / "missing.mp3").empty());
  EXPECT_TRUE(decodeFile(sounds).empty());
}

TEST_F(Mp3, EndsInARuinedFile) {
  std::string music = bytesOf(sounds / "music1.mp3").substr(0, 400'000);
  std::uint32_t noise = 1;
  for (std::size_t at = 20'000; at < music.size(); ++at) {
    noise = noise * 1'664'525 + 1'013'904'223;
    music[at] = static_cast<char>(noise >> 24);
  }
  const auto samples = decode(music);
  EXPECT_GT(samples.size(), 40 * samplesOfAFrame);
  EXPECT_LT(samples.size(), 2'000 * samplesOfAFrame);
}

}  // namespace
}  // namespace kelvora
