#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "generated/sourceFolder.h"
#include "tests/platform/sound/recording.h"

namespace kelvora {
namespace {

struct Loudness {
  double seconds = 0;
  double peak = 0;
  double level = 0;  ///< root mean square
  double start = 0;  ///< the largest sample of the first and the last millisecond
  double end = 0;
};

double largest(Samples::const_iterator first, Samples::const_iterator last) {
  double size = 0;
  for (; first != last; ++first) size = std::max(size, std::abs(*first / 32768.0));
  return size;
}

/// Measures all of it but the silence that fills its last block.
Loudness measure(const std::string& file) {
  Loudness track;
  Samples samples = decode(file);
  while (!samples.empty() && samples.back() == 0) samples.pop_back();
  constexpr std::ptrdiff_t millisecond = sampleRate / 1000 * 2;
  if (samples.size() < millisecond) return track;
  double energy = 0;
  for (const double sample : samples) energy += sample * sample / 32768 / 32768;
  track.seconds = static_cast<double>(samples.size()) / 2 / sampleRate;
  track.peak = largest(samples.begin(), samples.end());
  track.level = std::sqrt(energy / static_cast<double>(samples.size()));
  track.start = largest(samples.begin(), samples.begin() + millisecond);
  track.end = largest(samples.end() - millisecond, samples.end());
  return track;
}

class Tracks : public ::testing::TestWithParam<const char*> {};

TEST_P(Tracks, LastAMinuteAtTheSameLoudnessWithoutClicks) {
  const Loudness track = measure(std::string(KELVORA_SOURCE_DIR "/sounds/") + GetParam() + ".mp3");
  EXPECT_GE(track.seconds, 60);
  EXPECT_LE(track.seconds, 75);
  EXPECT_GT(track.peak, 0.25);
  EXPECT_LT(track.peak, 0.6) << "room for the effects";
  EXPECT_GT(track.level, 0.06);
  EXPECT_LT(track.level, 0.085);
  EXPECT_LT(track.start, 0.02);
  EXPECT_LT(track.end, 0.02);
}

INSTANTIATE_TEST_SUITE_P(Rotation, Tracks,
                         ::testing::Values("music1", "music2", "music3", "music4", "music5", "music_shopping"),
                         [](const auto& instance) { return std::string(instance.param); });

}  // namespace
}  // namespace kelvora
