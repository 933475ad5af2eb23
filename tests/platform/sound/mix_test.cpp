#include "platform/sound/mix.h"

#include <gtest/gtest.h>

#include <utility>

namespace kelvora {
namespace {

using Samples = std::vector<std::int16_t>;

/// Plays the given samples.
class FixedTrack : public Track {
 public:
  explicit FixedTrack(Samples samples) : samples_(std::move(samples)) {}
  bool read(std::span<std::int16_t> stereo) override {
    for (std::int16_t& sample : stereo) sample = next_ < samples_.size() ? samples_[next_++] : std::int16_t{0};
    return next_ < samples_.size();
  }

 private:
  Samples samples_;
  std::size_t next_ = 0;
};

class MixTest : public ::testing::Test {
 protected:
  Samples read(std::size_t count) {
    Samples samples(count, 123);
    mix.read(samples);
    return samples;
  }

  Mix mix;
};

TEST_F(MixTest, IsSilentAtFirst) {
  EXPECT_EQ(read(4), (Samples{0, 0, 0, 0}));
  EXPECT_FALSE(mix.isPlaying());
  EXPECT_FALSE(mix.isTrackPlaying());
}

TEST_F(MixTest, PlaysAnEffectForOneSpeakerOnBoth) {
  mix.setEffect(2, {false, {1, 2, 3}});
  EXPECT_EQ(read(2), (Samples{0, 0})) << "not before its start";
  mix.startEffect(2);
  EXPECT_EQ(read(4), (Samples{1, 1, 2, 2}));
  EXPECT_TRUE(mix.isPlaying());
  EXPECT_EQ(read(4), (Samples{3, 3, 0, 0}));
  EXPECT_FALSE(mix.isPlaying());
}

TEST_F(MixTest, PlaysAStereoEffect) {
  mix.setEffect(0, {true, {1, 2, 3, 4}});
  mix.startEffect(0);
  EXPECT_EQ(read(6), (Samples{1, 2, 3, 4, 0, 0}));
}

TEST_F(MixTest, AddsEffectsAndTrackAndClipsOnlyTheSum) {
  mix.setEffect(0, {true, {30'000, -30'000, 30'000, 5}});
  mix.setEffect(1, {true, {30'000, -30'000, -30'000, 6}});
  mix.startTrack(std::make_unique<FixedTrack>(Samples{1, 2, -20'000, 7, 9, 9}));
  mix.startEffect(0);
  mix.startEffect(1);
  EXPECT_EQ(read(4), (Samples{32'767, -32'768, -20'000, 18}));
  mix.setEffect(0, {false, {32'767}});
  mix.setEffect(1, {false, {32'767}});
  mix.setEffect(2, {false, {-32'768}});
  for (int channel = 0; channel < 3; ++channel) mix.startEffect(channel);
  EXPECT_EQ(read(2), (Samples{32'767, 32'767})) << "9 more than fit before the sum is clipped";
}

TEST_F(MixTest, RestartsAPlayingEffect) {
  mix.setEffect(0, {false, {1, 2, 3}});
  mix.startEffect(0);
  EXPECT_EQ(read(4), (Samples{1, 1, 2, 2}));
  mix.startEffect(0);
  EXPECT_EQ(read(8), (Samples{1, 1, 2, 2, 3, 3, 0, 0}));
}

TEST_F(MixTest, StopsOneEffectAlone) {
  mix.setEffect(0, {false, {1, 2, 3}});
  mix.setEffect(1, {false, {10, 20, 30}});
  mix.startEffect(0);
  mix.startEffect(1);
  mix.stopEffect(0);
  EXPECT_EQ(read(6), (Samples{10, 10, 20, 20, 30, 30}));
}

TEST_F(MixTest, ASilencedEffectGoesOnInaudibly) {
  mix.setEffect(0, {false, {1, 2, 3}});
  mix.silence(0, true);
  mix.startEffect(0);
  EXPECT_EQ(read(2), (Samples{0, 0}));
  EXPECT_TRUE(mix.isPlaying());
  mix.silence(0, false);
  EXPECT_EQ(read(4), (Samples{2, 2, 3, 3}));
  mix.silence(0, true);
  mix.setEffect(0, {false, {7}});
  mix.startEffect(0);
  EXPECT_EQ(read(2), (Samples{7, 7})) << "a new effect isn't silenced";
}

TEST_F(MixTest, IgnoresChannelsWithoutAnEffect) {
  for (const int channel : {-1, 0, 5}) {
    mix.startEffect(channel);
    mix.stopEffect(channel);
    mix.silence(channel, true);
  }
  mix.setEffect(3, {});
  mix.startEffect(3);
  EXPECT_FALSE(mix.isPlaying());
  EXPECT_EQ(read(2), (Samples{0, 0}));
}

TEST_F(MixTest, ATrackEndsWithItsLastSample) {
  mix.startTrack(std::make_unique<FixedTrack>(Samples{1, 2, 3, 4}));
  EXPECT_EQ(read(2), (Samples{1, 2}));
  EXPECT_TRUE(mix.isTrackPlaying());
  EXPECT_EQ(read(2), (Samples{3, 4}));
  EXPECT_FALSE(mix.isTrackPlaying());
  EXPECT_FALSE(mix.isPlaying());
}

TEST_F(MixTest, ANewTrackReplacesTheOld) {
  mix.startTrack(std::make_unique<FixedTrack>(Samples(100, 1)));
  mix.startTrack(std::make_unique<FixedTrack>(Samples(100, 7)));
  EXPECT_EQ(read(2), (Samples{7, 7}));
  mix.stopTrack();
  EXPECT_FALSE(mix.isTrackPlaying());
  EXPECT_EQ(read(2), (Samples{0, 0}));
}

TEST_F(MixTest, StopsAll) {
  mix.setEffect(0, {false, {1, 2, 3}});
  mix.startEffect(0);
  mix.startTrack(std::make_unique<FixedTrack>(Samples(100, 1)));
  mix.stopAll();
  EXPECT_FALSE(mix.isPlaying());
  EXPECT_EQ(read(2), (Samples{0, 0}));
}

}  // namespace
}  // namespace kelvora
