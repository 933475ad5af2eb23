#include <SDL.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>

#include "generated/sourceFolder.h"
#include "platform/desktop/mixedAudio.h"
#include "tests/platform/sound/recording.h"
#include "tests/support/allocatedBytes.h"

namespace kelvora {
namespace {

/// The mixer's arithmetic may be off by this much per sample.
constexpr int tolerance = 2;

bool isNear(int sample, int expected) { return std::abs(sample - expected) <= tolerance; }

Samples constant(double seconds, std::int16_t value) {
  return Samples(static_cast<std::size_t>(seconds * sampleRate), value);
}

bool contains(const Samples& samples, int value) {
  return std::any_of(samples.begin(), samples.end(), [value](int sample) { return isNear(sample, value); });
}

bool contains(const Samples& samples, const Samples& part) {
  return !part.empty() && std::search(samples.begin(), samples.end(), part.begin(), part.end()) != samples.end();
}

bool isLoud(const Samples& samples) {
  return std::any_of(samples.begin(), samples.end(), [](int sample) { return std::abs(sample) > 1'000; });
}

Samples left(const Samples& stereo) {
  Samples samples;
  for (std::size_t i = 0; i < stereo.size(); i += 2) samples.push_back(stereo[i]);
  return samples;
}

/// A quarter of a second from the given second on.
Samples part(const Samples& samples, double second) {
  const auto begin = static_cast<std::ptrdiff_t>(second * sampleRate);
  return {samples.begin() + begin, samples.begin() + begin + sampleRate / 4};
}

std::size_t firstSound(const Samples& samples, std::size_t from = 0) {
  while (from < samples.size() && samples[from] == 0) ++from;
  return from;
}

bool isSilentOfLate(const Samples& samples) {
  constexpr std::size_t window = 4096;
  return samples.size() > window && std::all_of(samples.end() - window, samples.end(), [](int s) { return s == 0; });
}

class Mixer : public ::testing::Test {
 protected:
  /// The effects of most tests are never late, however busy the machine is.
  explicit Mixer(std::chrono::milliseconds maxDelay = std::chrono::minutes(10),
                 std::chrono::milliseconds restInterval = rest)
      : mixer(soundModulePath(), maxDelay, restInterval) {}

  static constexpr std::chrono::milliseconds rest{200};

  std::string wave(const std::string& name, const Samples& samples) {
    const auto file = folder.path() / name;
    writeWave(file, samples);
    return file.string();
  }

  void awaitCommands() {
    mixer.startMusic((folder.path() / "nowhere.mp3").string());
    ASSERT_TRUE(waitFor([this] { return mixer.musicState() == psStopped; }));
  }

  TemporaryFolder folder;
  Recording recording{folder.path() / "device.raw"};
  SoundMixer mixer;
};

TEST_F(Mixer, PlaysAnEffectFromItsFirstSampleToItsLastOnBothSides) {
  Samples shape;
  for (int i = 0; i < 3000; ++i) shape.push_back(static_cast<std::int16_t>(i == 0 ? 12'000 : 9'000 - 7 * i % 8'000));
  mixer.startEffect(mixer.openEffect(wave("shape.wav", shape)));
  ASSERT_TRUE(waitFor([&] { return recording.left().size() > firstSound(recording.left()) + 5'000; }));
  for (const Samples& speaker : {recording.left(), recording.right()}) {
    const std::size_t start = firstSound(speaker);
    for (std::size_t i = 0; i < shape.size(); ++i) {
      ASSERT_TRUE(isNear(speaker[start + i], shape[i])) << i << ": " << speaker[start + i] << " for " << shape[i];
    }
    for (std::size_t i = shape.size(); i < 4'000; ++i) ASSERT_EQ(speaker[start + i], 0) << i;
  }
}

TEST_F(Mixer, RestartsAPlayingEffectAtOnce) {
  Samples marked = constant(20, 1'000);
  marked.front() = 20'000;
  const int effect = mixer.openEffect(wave("marked.wav", marked));
  mixer.startEffect(effect);
  ASSERT_TRUE(waitFor([&] { return contains(recording.left(), 1'000); }));
  mixer.startEffect(effect);
  const auto isMark = [](int sample) { return isNear(sample, 20'000); };
  ASSERT_TRUE(waitFor([&] {
    const Samples heard = recording.left();
    return std::count_if(heard.begin(), heard.end(), isMark) == 2;
  }));
  const Samples heard = recording.left();
  const auto first = std::find_if(heard.begin(), heard.end(), isMark);
  const auto second = std::find_if(first + 1, heard.end(), isMark);
  EXPECT_LT(second - first, 19 * sampleRate) << "long before its end";
  EXPECT_TRUE(std::all_of(first + 1, second, [](int sample) { return isNear(sample, 1'000); })) << "without a gap";
}

TEST_F(Mixer, MixesSeveralEffects) {
  const int low = mixer.openEffect(wave("low.wav", constant(20, 3'000)));
  const int high = mixer.openEffect(wave("high.wav", constant(0.1, 5'000)));
  mixer.startEffect(low);
  ASSERT_TRUE(waitFor([&] { return contains(recording.left(), 3'000); }));
  mixer.startEffect(high);
  EXPECT_TRUE(waitFor([&] { return contains(recording.left(), 8'000); }));
  EXPECT_TRUE(waitFor([&] { return isNear(recording.left().back(), 3'000); })) << "the first one continues";
}

TEST_F(Mixer, IsSilentAfterAStop) {
  const int effect = mixer.openEffect(wave("long.wav", constant(30, 3'000)));
  mixer.startEffect(effect);
  ASSERT_TRUE(waitFor([&] { return contains(recording.left(), 3'000); }));
  mixer.stopEffect(effect);
  EXPECT_TRUE(waitFor([&] { return isSilentOfLate(recording.left()); }));
}

TEST_F(Mixer, PlaysAMutedEffectInaudibly) {
  const int silenced = mixer.openEffect(wave("silenced.wav", constant(30, 3'000)));
  const int other = mixer.openEffect(wave("other.wav", constant(0.3, 5'000)));
  mixer.silenceEffect(silenced, true);
  mixer.startEffect(silenced);
  mixer.startEffect(other);
  ASSERT_TRUE(waitFor([&] { return contains(recording.left(), 5'000) && isSilentOfLate(recording.left()); }));
  for (const int sample : recording.left()) ASSERT_TRUE(sample == 0 || isNear(sample, 5'000)) << sample;
  mixer.silenceEffect(silenced, false);
  EXPECT_TRUE(waitFor([&] { return contains(recording.left(), 3'000); }));
}

TEST_F(Mixer, ReusesAClosedChannel) {
  const int first = mixer.openEffect(wave("first.wav", constant(30, 3'000)));
  const int second = mixer.openEffect(wave("second.wav", constant(30, 4'000)));
  EXPECT_NE(first, second);
  mixer.startEffect(first);
  ASSERT_TRUE(waitFor([&] { return contains(recording.left(), 3'000); }));
  mixer.silenceEffect(first, true);
  mixer.closeEffect(first);
  EXPECT_TRUE(waitFor([&] { return isSilentOfLate(recording.left()); }));
  const int third = mixer.openEffect(wave("third.wav", constant(30, 5'000)));
  EXPECT_EQ(third, first);
  mixer.startEffect(third);
  EXPECT_TRUE(waitFor([&] { return contains(recording.left(), 5'000); })) << "and not muted like its predecessor";
}

TEST_F(Mixer, LoadsAnEffectWhenItIsFirstPlayed) {
  const int effect = mixer.openEffect(wave("effect.wav", constant(0.1, 3'000)));
  awaitCommands();
  wave("effect.wav", constant(30, 5'000));
  mixer.startEffect(effect);
  EXPECT_TRUE(waitFor([&] { return contains(recording.left(), 5'000); }));
  wave("effect.wav", constant(30, 7'000));
  mixer.startEffect(effect);
  mixer.startEffect(mixer.openEffect(wave("later.wav", constant(30, 1'000))));
  EXPECT_TRUE(waitFor([&] { return contains(recording.left(), 6'000); })) << "and not again";
}

TEST_F(Mixer, DropsAFileThatIsNotASound) {
  const auto file = folder.path() / "broken.wav";
  std::ofstream(file) << "RIFF....WAVE and then garbage";
  const int broken = mixer.openEffect(file.string());
  const int whole = mixer.openEffect(wave("whole.wav", constant(0.1, 5'000)));
  mixer.startEffect(broken);
  mixer.stopEffect(broken);
  mixer.startEffect(whole);
  EXPECT_TRUE(waitFor([&] { return contains(recording.left(), 5'000); }));
}

TEST_F(Mixer, ReportsWhenATrackPlaysAndWhenItHasEnded) {
  EXPECT_EQ(mixer.musicState(), psReady);
  const std::string track = cutTrack("music1.mp3", 20'000, folder.path() / "track.mp3");
  mixer.startMusic(track);
  EXPECT_TRUE(waitFor([&] { return mixer.musicState() == psPlaying; }));
  EXPECT_TRUE(waitFor([&] { return mixer.musicState() == psStopped; }));
  EXPECT_TRUE(waitFor([&] { return contains(recording.left(), left(decode(track))); })) << "nothing is missing";
}

TEST_F(Mixer, PlaysOneTrackAtATime) {
  const std::string one = cutTrack("music1.mp3", 200'000, folder.path() / "one.mp3");
  const std::string two = cutTrack("music2.mp3", 200'000, folder.path() / "two.mp3");
  mixer.startMusic(one);
  ASSERT_TRUE(waitFor([&] { return contains(recording.left(), part(left(decode(one)), 0.5)); }));
  mixer.startMusic(two);
  EXPECT_NE(mixer.musicState(), psStopped) << "changing tracks doesn't count as an end";
  EXPECT_TRUE(waitFor([&] { return contains(recording.left(), part(left(decode(two)), 0.5)); }))
      << "and the other ends";
  EXPECT_EQ(mixer.musicState(), psPlaying);
}

TEST_F(Mixer, StopsTheMusicAtOnce) {
  mixer.startMusic(KELVORA_SOURCE_DIR "/sounds/music1.mp3");
  ASSERT_TRUE(waitFor([&] { return isLoud(recording.left()); }));
  mixer.stopMusic();
  EXPECT_EQ(mixer.musicState(), psStopped);
  EXPECT_TRUE(waitFor([&] { return isSilentOfLate(recording.left()); }));
}

TEST_F(Mixer, ATrackThatCannotBePlayedCountsAsStopped) {
  mixer.startMusic((folder.path() / "nowhere.mp3").string());
  EXPECT_TRUE(waitFor([&] { return mixer.musicState() == psStopped; }));
  const auto broken = folder.path() / "broken.mp3";
  std::ofstream(broken) << "no music";
  mixer.startMusic(broken.string());
  EXPECT_TRUE(waitFor([&] { return mixer.musicState() == psStopped; }));
}

TEST_F(Mixer, HasTheCodecOfTheGamesTracks) {
  mixer.startMusic(KELVORA_SOURCE_DIR "/sounds/music1.mp3");
  EXPECT_TRUE(waitFor([&] { return mixer.musicState() == psPlaying; }));
  EXPECT_TRUE(waitFor([&] { return isLoud(recording.left()); }));
}

TEST_F(Mixer, LeavesSignalsAndTheScreenAlone) {
  // A background process ignores the first one.
  for (const int signal : {SIGINT, SIGTERM}) std::signal(signal, SIG_DFL);
  mixer.startEffect(mixer.openEffect(wave("some.wav", constant(0.1, 5'000))));
  ASSERT_TRUE(waitFor([&] { return contains(recording.left(), 5'000); }));
  for (const int signal : {SIGINT, SIGTERM}) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    EXPECT_EQ(action.sa_handler, SIG_DFL) << signal;
  }
  EXPECT_EQ(SDL_WasInit(SDL_INIT_VIDEO), 0U);
}

TEST_F(Mixer, OpensNoDeviceBeforeTheFirstSound) {
  EXPECT_EQ(mixer.musicState(), psReady);
  mixer.stopMusic();
  EXPECT_EQ(mixer.musicState(), psReady);
  const int effect = mixer.openEffect(wave("effect.wav", constant(0.1, 5'000)));
  mixer.silenceEffect(effect, true);
  mixer.stopEffect(effect);
  awaitCommands();
  EXPECT_FALSE(std::filesystem::exists(recording.file()));
}

TEST_F(Mixer, ClosesTheDeviceInSilenceAndPlaysTheNextEffectInFull) {
  Samples shape = constant(0.2, 5'000);
  shape.front() = 20'000;
  shape.back() = -20'000;
  const int effect = mixer.openEffect(wave("shape.wav", shape));
  for (int turn = 0; turn < 2; ++turn) {
    EXPECT_FALSE(recording.isOpen());
    mixer.startEffect(effect);
    ASSERT_TRUE(waitFor([&] { return recording.isOpen(); }));
    ASSERT_TRUE(waitFor([&] { return contains(recording.left(), shape); })) << turn;
    ASSERT_TRUE(waitFor([&] { return !recording.isOpen(); })) << turn;
  }
}

TEST_F(Mixer, KeepsTheDeviceOpenDuringAQuietPassage) {
  Samples quiet = constant(5 * rest.count() / 1000.0, 0);
  quiet.front() = 20'000;
  quiet.back() = -20'000;
  mixer.startEffect(mixer.openEffect(wave("quiet.wav", quiet)));
  EXPECT_TRUE(waitFor([&] { return contains(recording.left(), quiet); }));
}

/// A device that hangs while being opened until somebody reads from it, and that breaks when nobody reads any more.
class HangingDevice : public Mixer {
 protected:
  HangingDevice() : Mixer(SoundMixer::usualMaxDelay, SoundMixer::usualRest) {
    std::signal(SIGPIPE, SIG_IGN);  // from here on, because the mixer may write until it is destroyed
    EXPECT_EQ(mkfifo(pipe_.c_str(), 0600), 0);
  }

  void beginReading() { reader_ = open(pipe_.c_str(), O_RDONLY | O_NONBLOCK); }
  /// Continues reading. True if anything but silence arrived.
  bool readSound() {
    std::array<char, 65536> bytes{};
    const ssize_t count = read(reader_, bytes.data(), bytes.size());
    received_ += std::max<ssize_t>(count, 0);
    return std::any_of(bytes.begin(), bytes.end(), [](char byte) { return byte != 0; });
  }
  ssize_t received() const { return received_; }
  void breakDevice() { close(reader_); }

 private:
  const std::string pipe_ = (folder.path() / "device.raw").string();
  int reader_ = -1;
  ssize_t received_ = 0;
};

TEST_F(HangingDevice, BlocksNobodyAndDropsLateEffects) {
  const std::string file = wave("effect.wav", constant(0.2, 5'000));
  // The device opens only once somebody reads, and none of these calls waits for it.
  int effect = 0;
  for (int i = 0; i < 9; ++i) effect = mixer.openEffect(file);
  mixer.silenceEffect(effect, false);
  mixer.startEffect(effect);
  mixer.startMusic((folder.path() / "nowhere.mp3").string());
  EXPECT_EQ(mixer.musicState(), psTransitioning);
  std::this_thread::sleep_for(2 * SoundMixer::usualMaxDelay);
  EXPECT_EQ(mixer.musicState(), psTransitioning);
  beginReading();
  bool heard = false;
  EXPECT_TRUE(waitFor([&] {
    heard = readSound() || heard;
    return received() > sampleRate * 4 / 2;
  }));
  EXPECT_FALSE(heard);
  EXPECT_EQ(mixer.musicState(), psStopped);
  mixer.startEffect(effect);
  EXPECT_TRUE(waitFor([&] { return readSound(); })) << "from now on everything works";
  breakDevice();
}

TEST_F(HangingDevice, CommandsThatWaitForItAreBounded) {
  const int effect = mixer.openEffect(wave("effect.wav", constant(0.2, 5'000)));
  mixer.startEffect(effect);
  const std::size_t before = allocatedBytes();
  for (int i = 0; i < 300'000; ++i) {
    mixer.silenceEffect(effect, false);
    mixer.startEffect(effect);
    mixer.stopEffect(effect);
  }
  EXPECT_LT(allocatedBytes(), before + (std::size_t{1} << 20));
  beginReading();
  EXPECT_TRUE(waitFor([&] {
    mixer.startEffect(effect);
    return readSound();
  })) << "from now on everything works";
  breakDevice();
}

TEST_F(HangingDevice, ThatVanishesInPlayDoesNoHarm) {
  const int effect = mixer.openEffect(wave("effect.wav", constant(0.3, 5'000)));
  beginReading();
  mixer.startMusic(cutTrack("music1.mp3", 30'000, folder.path() / "track.mp3"));
  ASSERT_TRUE(waitFor([&] { return readSound(); }));
  breakDevice();
  for (int i = 0; i < 20; ++i) mixer.stopEffect(effect);
  EXPECT_TRUE(waitFor([&] { return mixer.musicState() == psStopped; })) << "the track ends unheard";
  beginReading();
  EXPECT_TRUE(waitFor([&] {
    mixer.startEffect(effect);
    return readSound();
  })) << "the next sound opens the device again";
  mixer.startMusic((folder.path() / "nowhere.mp3").string());
  EXPECT_TRUE(waitFor([&] {
    readSound();
    return mixer.musicState() == psStopped;
  })) << "nothing else is waiting for the device";
  breakDevice();
}

/// Several kinds of machines without sound.
class SilentMachine : public ::testing::TestWithParam<const char*> {
 protected:
  SilentMachine() {
    environment.set("SDL_AUDIODRIVER", GetParam());
    environment.set("AUDIODEV", "there-is-no-such-card");
  }
  ScopedEnvironment environment;
};

TEST_P(SilentMachine, PrintsNothing) {
  ::testing::internal::CaptureStdout();
  ::testing::internal::CaptureStderr();
  bool settled = false;
  {
    SoundMixer mixer;
    const int effect = mixer.openEffect(KELVORA_SOURCE_DIR "/sounds/bounce.wav");
    mixer.startEffect(effect);
    mixer.silenceEffect(effect, true);
    mixer.stopEffect(effect);
    mixer.startMusic(KELVORA_SOURCE_DIR "/sounds/no-such-track.mp3");
    settled = waitFor([&] { return mixer.musicState() == psStopped; });
    mixer.closeEffect(effect);
  }
  EXPECT_TRUE(settled);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

INSTANTIATE_TEST_SUITE_P(Drivers, SilentMachine, ::testing::Values("alsa", "dummy", "no-such-driver"),
                         [](const auto& instance) { return "Number" + std::to_string(instance.index); });

TEST(MixedSound, OpensOnlyWaveFiles) {
  const auto mixer = std::make_shared<SoundMixer>();
  ScopedEnvironment environment;
  environment.set("SDL_AUDIODRIVER", "dummy");
  EXPECT_TRUE(MixedSound(mixer).open(KELVORA_SOURCE_DIR "/sounds/bounce.wav"));
  EXPECT_FALSE(MixedSound(mixer).open(KELVORA_SOURCE_DIR "/sounds/nowhere.wav"));
  EXPECT_FALSE(MixedSound(mixer).open(KELVORA_SOURCE_DIR "/sounds"));
  EXPECT_FALSE(MixedSound(mixer).open(KELVORA_SOURCE_DIR "/sounds/music1.mp3"));
  EXPECT_FALSE(MixedSound(mixer).open(""));
}

}  // namespace
}  // namespace kelvora
