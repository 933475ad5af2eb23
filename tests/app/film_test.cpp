#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "app/film.h"
#include "app/replayGame.h"
#include "core/modMain.h"
#include "generated/sourceFolder.h"
#include "platform/recording/file.h"
#include "tests/app/recordedMatch.h"
#include "tests/platform/sound/recording.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

namespace fs = std::filesystem;

std::string soundPath(const std::string& name) { return std::string(KELVORA_SOURCE_DIR) + "/sounds/" + name; }

Samples readSamples(const fs::path& file, std::size_t head) {
  std::ifstream stream(file, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
  Samples samples;
  for (std::size_t at = head; at + 1 < bytes.size(); at += 2) {
    const auto low = static_cast<unsigned char>(bytes[at]);
    const auto high = static_cast<unsigned char>(bytes[at + 1]);
    samples.push_back(static_cast<std::int16_t>(low | (high << 8)));
  }
  return samples;
}

/// All effects are for one speaker, at the mix's rate.
Samples effect(const std::string& name) {
  constexpr std::size_t waveHead = 44;
  return readSamples(soundPath(name), waveHead);
}

std::size_t samplesIn(Millis time) { return static_cast<std::size_t>(time * sampleRate / 1000); }

/// A film of the sound alone: a script takes ffmpeg's place.
class FilmTest : public testing::Test {
 protected:
  FilmTest() {
    const std::string tools = (folder_.path() / "tools").string();
    fs::create_directory(tools);
    std::ofstream(tools + "/ffmpeg") << R"(#!/bin/sh
for word; do
  case $word in file:*/sound) sound=${word#file:};; file:*) film=${word#file:};; esac
done
if [ "$sound" ]; then cp "$sound" "$film"; else cat >"$film"; fi
)";
    fs::permissions(tools + "/ffmpeg", fs::perms::owner_all);
    environment_.set("PATH", tools + ":" + std::getenv("PATH"));
  }

  std::string path(const std::string& name) const { return (folder_.path() / name).string(); }

  /// The samples of both speakers must be equal. Returns those of one.
  Samples heard() const {
    const Samples stereo = readSamples(path("film.mp4"), 0);
    Samples left;
    for (std::size_t i = 0; i + 1 < stereo.size(); i += 2) {
      left.push_back(stereo[i]);
      if (stereo[i] != stereo[i + 1]) ADD_FAILURE() << "the speakers differ at " << i / 2;
      if (testing::Test::HasFailure()) break;
    }
    return left;
  }

  ScopedEnvironment environment_;
  TemporaryFolder folder_;
};

/// A film whose frames and sounds come from the test.
class ShortFilm : public FilmTest {
 protected:
  void film(Millis from, Millis to) {
    for (Millis now = from; now <= to; now += 10) ASSERT_TRUE(video_.add(now)) << video_.error();
  }
  void start(const std::string& name, Millis now) { video_.hear({soundPath(name), false, true}, now); }
  void stop(const std::string& name, Millis now) { video_.hear({soundPath(name), false, false}, now); }

  /// `wave` in silence.
  static Samples withWave(const Samples& wave, Millis at, std::size_t size) {
    Samples all(size);
    std::copy(wave.begin(), wave.end(), all.begin() + static_cast<std::ptrdiff_t>(samplesIn(at)));
    return all;
  }

  const HeadlessClient client_;
  Video video_{path("film.mp4")};
};

TEST_F(ShortFilm, HasAnEffectAtItsTimeAndIsSilentElsewhere) {
  film(0, 500);
  start("capture.wav", 505);
  film(510, 3'000);
  ASSERT_TRUE(video_.finish()) << video_.error();
  const Samples expected = withWave(effect("capture.wav"), 505, samplesIn(3'040));
  EXPECT_TRUE(heard() == expected);
}

TEST_F(ShortFilm, CutsAPauseFromPicturesAndSoundAlike) {
  film(0, 1'000);  // 26 pictures
  start("bounce.wav", 9'000);
  film(9'000, 10'000);
  ASSERT_TRUE(video_.finish()) << video_.error();
  const Samples expected = withWave(effect("bounce.wav"), 2'040, samplesIn(3'080));
  EXPECT_TRUE(heard() == expected);
}

TEST_F(ShortFilm, EndsAStoppedEffect) {
  film(0, 500);
  start("puMissile.wav", 500);
  stop("bounce.wav", 600);
  film(510, 700);
  stop("puMissile.wav", 700);
  film(710, 1'000);
  ASSERT_TRUE(video_.finish()) << video_.error();
  Samples wave = effect("puMissile.wav");
  wave.resize(samplesIn(700) - samplesIn(500));
  EXPECT_TRUE(heard() == withWave(wave, 500, samplesIn(1'040)));
}

TEST_F(ShortFilm, HasMusicUntilItStops) {
  film(0, 200);
  video_.hear({soundPath("music1.mp3"), true, true}, 200);
  film(210, 1'200);
  video_.hear({{}, true, false}, 1'200);
  film(1'210, 2'000);
  ASSERT_TRUE(video_.finish()) << video_.error();
  const Samples stereo = readSamples(path("film.mp4"), 0);
  const auto isHeard = [&stereo](Millis from, Millis to) {
    const auto begin = stereo.begin();
    return std::any_of(begin + static_cast<std::ptrdiff_t>(2 * samplesIn(from)),
                       begin + static_cast<std::ptrdiff_t>(2 * samplesIn(to)),
                       [](std::int16_t sample) { return sample != 0; });
  };
  ASSERT_EQ(stereo.size(), 2 * samplesIn(2'040));
  EXPECT_FALSE(isHeard(0, 200));
  EXPECT_TRUE(isHeard(200, 1'200));
  EXPECT_FALSE(isHeard(1'200, 2'040));
}

/// A film of the seconds from 2 to 3.
class PartFilm : public FilmTest {
 protected:
  bool add(Millis from, Millis to) {
    bool goesOn = true;
    for (Millis now = from; goesOn && now <= to; now += 10) goesOn = video_.add(now);
    return goesOn;
  }

  const HeadlessClient client_;
  Video video_{path("film.mp4"), {.from = 2'000, .to = 3'000}};
};

TEST_F(PartFilm, HasItsRangeAlone) {
  EXPECT_TRUE(add(0, 1'900));
  video_.hear({soundPath("bounce.wav"), false, true}, 1'900);
  EXPECT_TRUE(add(1'910, 2'400));
  video_.hear({soundPath("capture.wav"), false, true}, 2'405);
  EXPECT_TRUE(add(2'410, 2'990));
  EXPECT_FALSE(add(3'000, 3'000)) << "the replay ends with the range";
  ASSERT_TRUE(video_.finish()) << video_.error();
  Samples expected(samplesIn(1'000));
  const Samples wave = effect("capture.wav");
  std::copy_n(wave.begin(), std::min(wave.size(), expected.size() - samplesIn(405)),
              expected.begin() + static_cast<std::ptrdiff_t>(samplesIn(405)));
  EXPECT_TRUE(heard() == expected);
  EXPECT_EQ(video_.result(), path("film.mp4") + ": a film of 0:01");
}

TEST_F(PartFilm, BeginsWithTheTrackThatPlays) {
  video_.hear({soundPath("music1.mp3"), true, true}, 100);
  add(0, 3'000);
  ASSERT_TRUE(video_.finish()) << video_.error();
  const Samples stereo = readSamples(path("film.mp4"), 0);
  EXPECT_EQ(stereo.size(), 2 * samplesIn(1'000));
  EXPECT_TRUE(std::any_of(stereo.begin(), stereo.end(), [](std::int16_t sample) { return sample != 0; }));
}

TEST_F(PartFilm, HasNoTrackThatStoppedBefore) {
  video_.hear({soundPath("music1.mp3"), true, true}, 100);
  video_.hear({{}, true, false}, 200);
  add(0, 3'000);
  ASSERT_TRUE(video_.finish()) << video_.error();
  EXPECT_TRUE(heard() == Samples(samplesIn(1'000)));
}

TEST_F(PartFilm, WithoutPicturesIsAnError) {
  EXPECT_TRUE(add(0, 1'990));
  EXPECT_FALSE(video_.finish());
  EXPECT_EQ(video_.error(), "there is no picture to write");
}

TEST_F(ShortFilm, OfMissingFilesIsSilent) {
  film(0, 100);
  start("missing.wav", 100);
  video_.hear({soundPath("missing.mp3"), true, true}, 100);
  film(110, 500);
  ASSERT_TRUE(video_.finish()) << video_.error();
  EXPECT_TRUE(heard() == Samples(samplesIn(520)));
}

TEST_F(FilmTest, LeavesNothingElseBehind) {
  {
    const HeadlessClient client;
    Video video(path("film.mp4"));
    video.add(0);
    ASSERT_TRUE(video.finish()) << video.error();
  }
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder_.path())) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{"film.mp4", "tools"}));
}

TEST_F(FilmTest, AnInterruptedOneLeavesNothing) {
  const HeadlessClient client;
  { Video(path("film.mp4")).add(0); }
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder_.path())) names.push_back(entry.path().filename().string());
  EXPECT_EQ(names, std::vector<std::string>{"tools"});
}

TEST_F(FilmTest, TellsWhyFfmpegHasFailed) {
  const auto errorOf = [this](const std::string& words) {
    std::ofstream(path("tools/ffmpeg")) << "#!/bin/sh\ncat >/dev/null\necho '" << words << "' >&2\nexit 1\n";
    const HeadlessClient client;
    Video video(path("film.mp4"));
    video.add(0);
    EXPECT_FALSE(video.finish());
    return video.error();
  };
  EXPECT_EQ(errorOf("[mp4] first\nNo space left on device"), "ffmpeg has failed: No space left on device");
  EXPECT_EQ(errorOf(""), "ffmpeg has failed");
  EXPECT_EQ(errorOf("[NULL] Unable to find a suitable output format for it\nInvalid argument"),
            "ffmpeg knows no kind of film by the name of " + path("film.mp4") + ". Try one that ends in .mp4");
}

TEST_F(FilmTest, AFailureKeepsTheFilmThatWasThere) {
  std::ofstream(path("film.mp4")) << "the old film";
  std::ofstream(path("tools/ffmpeg")) << "#!/bin/sh\ncat >/dev/null\nexit 1\n";
  const HeadlessClient client;
  Video video(path("film.mp4"));
  video.add(0);
  EXPECT_FALSE(video.finish());
  std::ifstream film(path("film.mp4"));
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(film), {}), "the old film");
}

TEST_F(FilmTest, TellsThatFfmpegIsMissing) {
  environment_.set("PATH", path("nothing"));
  Video video(path("film.mp4"));
  EXPECT_FALSE(video.finish());
  EXPECT_EQ(video.error(), "ffmpeg is not installed");
}

TEST_F(FilmTest, TellsThatItsFolderIsMissing) {
  Video video(path("nowhere/film.mp4"));
  EXPECT_FALSE(video.finish());
  EXPECT_EQ(video.error(), path("nowhere/film.mp4") + " can't be written");
}

/// A film of a recorded match.
class MatchFilm : public FilmTest {
 protected:
  /// A sound that the game played between two frames.
  struct Played {
    std::string name;
    Millis from = 0;
    Millis to = 0;
  };

  /// Somebody plays effects of the console between those of the match.
  std::vector<Played> record(const std::string& effects) const {
    std::vector<Played> played;
    RecordedMatch::Rules rules{.bots = 3, .seconds = 4};
    rules.settings = {{{"audio", "music"}, "False"}, {{"audio", "sfx"}, effects}};
    std::size_t known = 0;
    Millis begin = 0;
    Millis before = 0;
    RecordedMatch match(path("match"), rules, [&](RecordedMatch& game) {
      const Millis now = game.machine.ticks - begin;
      for (; known < game.machine.soundCommands.size(); ++known) {
        const std::string& command = game.machine.soundCommands[known];
        if (const std::size_t end = command.find(" play"); end != std::string::npos) {
          played.push_back({command.substr(0, end), before, now});
        }
      }
      before = now;
      if (game.frame() == 20) game.logIn();
      if (!modMain::world.localPlayer.isConnected) return;
      game.steer();
      if (game.frame() == 200) game.type("~playsound:0");
      if (game.frame() == 320) game.type("~playsound:1");
    });
    begin = match.machine.ticks;
    match.play();
    return played;
  }

  void film() const {
    const HeadlessClient client;
    Video video(path("film.mp4"));
    const ReplayReport report =
        replayGame(recording::openRecording(path("match")), KELVORA_SOURCE_DIR, [&video](recording::Replay& replay) {
          replay.pictureSource = testPicture;
          replay.onFrame = [&] { return video.add(replay.elapsed()); };
          replay.onSound = [&](const recording::Sounding& sounding) { video.hear(sounding, replay.elapsed()); };
        });
    EXPECT_TRUE(report.isExact()) << report.text;
    EXPECT_TRUE(video.finish()) << video.error();
  }
};

TEST_F(MatchFilm, HasTheEffectsOfTheMatchAtTheirTimes) {
  const std::vector<Played> played = record("True");
  film();
  Samples track = heard();
  ASSERT_GT(track.size(), samplesIn(4'000));
  std::size_t found = 0;
  for (const Played& sound : played) {
    const Samples wave = effect(sound.name);
    for (std::size_t at = samplesIn(sound.from); at <= samplesIn(sound.to) && at + wave.size() <= track.size(); ++at) {
      const auto begin = track.begin() + static_cast<std::ptrdiff_t>(at);
      if (!std::equal(wave.begin(), wave.end(), begin)) continue;
      std::fill_n(begin, wave.size(), std::int16_t{0});
      ++found;
      break;
    }
  }
  EXPECT_EQ(found, played.size());
  EXPECT_GE(found, 2U);
  EXPECT_TRUE(track == Samples(track.size())) << "silence elsewhere";
}

TEST_F(MatchFilm, IsSilentIfEffectsAreSwitchedOff) {
  const std::vector<Played> played = record("False");
  film();
  EXPECT_TRUE(played.empty());
  const Samples track = heard();
  ASSERT_GT(track.size(), samplesIn(4'000));
  EXPECT_TRUE(track == Samples(track.size()));
}

}  // namespace
}  // namespace kelvora
