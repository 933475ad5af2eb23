#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/project/tree.h"

// The sound files as files: their names, formats and sizes, and that the effects are short, of one loudness and whole.
namespace {

constexpr int sampleRate = 44100;

std::string bytesOf(const std::string& name) { return tree::text("sounds/" + name); }

std::uint32_t number(const std::string& bytes, std::size_t at, std::size_t size) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < size; ++i) {
    value |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes.at(at + i))) << (8 * i);
  }
  return value;
}

struct Effect {
  const char* name;
  double shortest;  ///< seconds
  double longest;
};

class Effects : public ::testing::TestWithParam<Effect> {
 protected:
  void SetUp() override {
    bytes = bytesOf(std::string(GetParam().name) + ".wav");
    ASSERT_GT(bytes.size(), 44U);
    for (std::size_t at = 44; at + 2 <= bytes.size(); at += 2) {
      samples.push_back(static_cast<std::int16_t>(number(bytes, at, 2)) / 32768.0);
    }
  }
  /// Root mean square of the loudest tenth of a second.
  double loudness() const {
    constexpr std::size_t window = sampleRate / 10;
    double energy = 0;
    double most = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
      energy += samples[i] * samples[i];
      if (i >= window) energy -= samples[i - window] * samples[i - window];
      most = std::max(most, energy);
    }
    return std::sqrt(most / window);
  }

  std::string bytes;
  std::vector<double> samples;
};

TEST_P(Effects, AreOneChannelOf16BitsAt44100) {
  EXPECT_EQ(bytes.substr(0, 4), "RIFF");
  EXPECT_EQ(number(bytes, 4, 4), bytes.size() - 8);
  EXPECT_EQ(bytes.substr(8, 8), "WAVEfmt ");
  EXPECT_EQ(number(bytes, 20, 2), 1U) << "plain samples";
  EXPECT_EQ(number(bytes, 22, 2), 1U) << "channels";
  EXPECT_EQ(number(bytes, 24, 4), 44100U);
  EXPECT_EQ(number(bytes, 34, 2), 16U) << "bits";
  EXPECT_EQ(bytes.substr(36, 4), "data");
  EXPECT_EQ(number(bytes, 40, 4), bytes.size() - 44);
}

TEST_P(Effects, LastAsLongAsTheirKindShould) {
  const double seconds = static_cast<double>(samples.size()) / sampleRate;
  EXPECT_GE(seconds, GetParam().shortest);
  EXPECT_LE(seconds, GetParam().longest);
}

TEST_P(Effects, AreOfOneLoudnessAndNowhereCut) {
  EXPECT_GT(loudness(), 0.14);
  EXPECT_LT(loudness(), 0.33) << "lows count more here than in the ear";
  double peak = 0;
  for (const double sample : samples) peak = std::max(peak, std::abs(sample));
  EXPECT_GT(peak, 0.2);
  EXPECT_LE(peak, 0.8);
}

TEST_P(Effects, BeginAtOnceAndEndInSilence) {
  EXPECT_EQ(samples.front(), 0);
  EXPECT_EQ(samples.back(), 0);
  EXPECT_LT(std::abs(samples[10]), 0.05) << "no click at the start";
  const auto loud = std::find_if(samples.begin(), samples.end(), [](double sample) { return std::abs(sample) > 0.02; });
  EXPECT_LT(loud - samples.begin(), sampleRate / 20) << "heard within 50 ms";
}

INSTANTIATE_TEST_SUITE_P(Sounds, Effects,
                         ::testing::Values(Effect{"capture", 0.4, 1}, Effect{"bounce", 0.1, 0.4},
                                           Effect{"error", 0.2, 0.6}, Effect{"puShield", 0.6, 1.5},
                                           Effect{"puTurbo", 0.5, 1.5}, Effect{"puChargedTail", 0.5, 1.5},
                                           Effect{"puLongTail", 0.5, 1.5}, Effect{"puLaser", 0.3, 1},
                                           Effect{"puMissile", 0.8, 2}),
                         [](const auto& instance) { return std::string(instance.param.name); });

class Music : public ::testing::TestWithParam<const char*> {};

TEST_P(Music, IsAnMp3OfAMinuteAndBelowAMegabyte) {
  const std::string bytes = bytesOf(std::string(GetParam()) + ".mp3");
  ASSERT_GT(bytes.size(), 4U);
  EXPECT_LT(bytes.size(), 1'000'000U);
  EXPECT_EQ(static_cast<unsigned char>(bytes[0]), 0xFF);
  EXPECT_EQ(static_cast<unsigned char>(bytes[1]), 0xFB) << "MPEG 1, layer 3, no checksum";
  EXPECT_EQ(static_cast<unsigned char>(bytes[2]) >> 4, 7) << "96 kbit/s";
  EXPECT_EQ((static_cast<unsigned char>(bytes[2]) >> 2) & 3, 0) << "44100 Hz";
  const double seconds = static_cast<double>(bytes.size()) * 8 / 96'000;
  EXPECT_GE(seconds, 60);
  EXPECT_LE(seconds, 75);
}

INSTANTIATE_TEST_SUITE_P(Sounds, Music,
                         ::testing::Values("music1", "music2", "music3", "music4", "music5", "music_shopping"),
                         [](const auto& instance) { return std::string(instance.param); });

TEST(Sounds, AreTheseFifteenFiles) {
  std::vector<std::string> names;
  for (const auto& file : tree::files({".wav", ".mp3"})) names.push_back(file.path);
  EXPECT_EQ(names, (std::vector<std::string>{"sounds/bounce.wav", "sounds/capture.wav", "sounds/error.wav",
                                             "sounds/music1.mp3", "sounds/music2.mp3", "sounds/music3.mp3",
                                             "sounds/music4.mp3", "sounds/music5.mp3", "sounds/music_shopping.mp3",
                                             "sounds/puChargedTail.wav", "sounds/puLaser.wav", "sounds/puLongTail.wav",
                                             "sounds/puMissile.wav", "sounds/puShield.wav", "sounds/puTurbo.wav"}));
}

}  // namespace
