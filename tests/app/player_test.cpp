#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "app/clockText.h"
#include "app/player/controlState.h"
#include "app/player/engine.h"
#include "app/player/frmPlayer.h"
#include "app/player/marks.h"
#include "app/player/pack.h"
#include "app/player/playback.h"
#include "app/player/snapshotPlan.h"
#include "generated/sourceFolder.h"
#include "platform/recording/file.h"
#include "platform/recording/handlers.h"
#include "tests/app/recordedMatch.h"
#include "tests/support/gameTest.h"

namespace kelvora::player {
namespace {

constexpr Millis interval = 3000;
constexpr Millis frameTime = 60;  // more than a frame takes in the recordings

Channel scoutOf(const std::string& file) {
  const auto prepare = [](recording::Replay& replay) { replay.pictureSource = testPicture; };
  return startScout(recording::openRecording(file), KELVORA_SOURCE_DIR, prepare, interval);
}

std::string recordingOf(const std::string& name) {
  return std::string(KELVORA_SOURCE_DIR) + "/tests/app/recordings/" + name;
}

/// A recording that is played by the processes of a player, shown without a screen.
class PlayerTest : public testing::Test {
 protected:
  void open(const std::string& file) { playback.emplace(scoutOf(file)); }
  /// Waits until the whole recording is known.
  void scout() {
    while (!playback->isScouted()) {
      playback->awaitScout();
      playback->serve();
    }
  }
  void goTo(Millis time) {
    playback->goTo(time);
    playback->wait();
  }
  /// Everything that the windows show.
  std::string shown() const {
    std::string all;
    for (Form* form : playback->mirror().forms()) {
      for (Control* control : recording::controlsOf(*form)) all += packProperties(*control);
    }
    return all;
  }
  std::vector<std::string> captions() const {
    std::vector<std::string> all;
    for (const Form* form : playback->mirror().forms()) all.push_back(form->Caption);
    return all;
  }

  HeadlessClient client;
  std::optional<Playback> playback;
};

TEST_F(PlayerTest, AJumpShowsWhatPlayingShows) {
  open(recordingOf("trade"));
  std::map<Millis, std::string> seen;
  std::map<Millis, std::uint64_t> frames;
  for (Millis time = 0; time <= 12'000; time += 400) {
    goTo(time);
    EXPECT_GE(playback->time(), time);
    EXPECT_LT(playback->time(), time + frameTime);
    seen[time] = shown();
    frames[time] = playback->frame();
  }
  EXPECT_GT(frames[12'000], frames[4000]);
  scout();
  for (const Millis time : {4000, 400, 10'400, 3200, 12'000, 0}) {
    goTo(time);
    EXPECT_EQ(playback->frame(), frames[time]);
    EXPECT_TRUE(shown() == seen[time]) << "at " << time;
  }
}

TEST_F(PlayerTest, StepsByOneFrame) {
  open(recordingOf("easy"));
  goTo(5000);
  for (int i = 0; i < 3; ++i) {
    const std::uint64_t before = playback->frame();
    const std::string seen = shown();
    playback->step();
    playback->wait();
    EXPECT_EQ(playback->frame(), before + 1);
    EXPECT_FALSE(shown() == seen);
  }
}

TEST_F(PlayerTest, TheLastMomentIsTheLast) {
  open(recordingOf("boxes"));
  scout();
  goTo(playback->length() + 5000);
  EXPECT_EQ(playback->time(), playback->length() - 1);
  EXPECT_TRUE(playback->isAtEnd());
  goTo(1000);
  EXPECT_FALSE(playback->isAtEnd());
}

TEST_F(PlayerTest, EveryCaptureIsMarkedWhereItIsAnnounced) {
  open(recordingOf("hard"));
  scout();
  const std::vector<Mark>& marks = playback->marks();
  const std::string verb = " has captured ";
  int announced = 0;
  for (const Mark& line : marks) {
    if (line.kind != Mark::Kind::Line || line.text.find(verb) == std::string::npos) continue;
    ++announced;
    const bool isMarked = std::any_of(marks.begin(), marks.end(), [&](const Mark& mark) {
      return mark.kind == Mark::Kind::Capture && std::abs(mark.time - line.time) < 1000;
    });
    EXPECT_TRUE(isMarked) << line.text << " at " << line.time;
  }
  EXPECT_GE(announced, 3);
  EXPECT_TRUE(std::is_sorted(marks.begin(), marks.end(),
                             [](const Mark& first, const Mark& second) { return first.time < second.time; }));
}

TEST_F(PlayerTest, OpenWindowsOpenAgain) {
  open(recordingOf("trade"));
  scout();
  std::map<Millis, std::vector<std::string>> seen;
  std::size_t most = 0;
  for (Millis time = 0; time < playback->length(); time += 3000) {
    goTo(time);
    seen[time] = captions();
    most = std::max(most, captions().size());
  }
  EXPECT_GE(most, 2U);  // with the store
  for (auto moment = seen.rbegin(); moment != seen.rend(); ++moment) {
    goTo(moment->first);
    EXPECT_EQ(captions(), moment->second);
  }
}

class RecordedPlayerTest : public testing::Test {
 protected:
  ~RecordedPlayerTest() override { std::filesystem::remove(path); }

  void record(const RecordedMatch::Script& script) const {
    RecordedMatch match(path, {.bots = 1, .seconds = 4}, [&](RecordedMatch& game) {
      if (game.frame() == 20) game.logIn();
      script(game);
    });
    match.play();
  }

  const std::string path =
      (std::filesystem::temp_directory_path() /
       ("player-" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) + ".recording"))
          .string();
};

TEST_F(RecordedPlayerTest, AnOpenMessageBoxOpensAgain) {
  Millis opened = 0;
  record([&](RecordedMatch& game) {
    if (game.frame() != 200) return;
    game.machine.onMessageBox = [&](const std::string&) {
      opened = game.machine.ticks - 1'000'000;
      game.machine.advance(800);
    };
    game.type("~?");
  });
  ASSERT_GT(opened, 0);
  const HeadlessClient client;
  Playback playback(scoutOf(path));
  const auto boxesAt = [&](Millis time) {
    playback.goTo(time);
    playback.wait();
    const std::vector<Form*> forms = playback.mirror().forms();
    return std::count_if(forms.begin(), forms.end(), [](const Form* form) { return form->Caption.get() == "Kelvora"; });
  };
  EXPECT_EQ(boxesAt(opened - 200), 0);
  EXPECT_EQ(boxesAt(opened + 400), 1);
  EXPECT_EQ(boxesAt(opened + 1000), 0);
  EXPECT_EQ(boxesAt(opened + 400), 1);
}

TEST_F(RecordedPlayerTest, AJumpFindsTheTrackThatPlaysThere) {
  record([](RecordedMatch& game) {
    if (game.frame() == 50) game.machine.playState = psStopped;  // the track is over
  });
  const HeadlessClient client;
  Playback playback(scoutOf(path));
  const auto trackAt = [&](Millis time) {
    playback.goTo(time);
    playback.wait();
    return playback.music();
  };
  const Music first = trackAt(1000);
  EXPECT_FALSE(first.file.empty());
  const Music next = trackAt(3500);
  EXPECT_NE(next.file, first.file);
  EXPECT_NE(next.number, first.number);
  EXPECT_EQ(trackAt(1000), first);
}

TEST_F(RecordedPlayerTest, AFaultIsTheEnding) {
  record([](RecordedMatch& game) {
    if (game.frame() != 200) return;
    game.machine.settings[{"last login", "player color"}] = "red";
    game.reconnect();
  });
  const HeadlessClient client;
  Playback playback(scoutOf(path));
  while (!playback.isScouted()) {
    playback.awaitScout();
    playback.serve();
  }
  EXPECT_EQ(playback.ending(), "Type mismatch");
}

/// The player's window.
class FrmPlayerTest : public PlayerTest {
 protected:
  FrmPlayerTest() {
    open(recordingOf("hard"));
    scout();
    form.emplace(*playback, "hard");
    form->Show();
    pass(1);
  }

  /// Lets the window's timer tick, each time with a picture.
  void pass(int ticks) {
    for (int i = 0; i < ticks; ++i) {
      playback->wait();
      client.machine.advance(form->tmrFrame.Interval);
      client.machine.doEvents(false);
    }
    playback->wait();
  }
  void press(char key) {
    form->strip.KeyPress(key);
    playback->wait();
  }

  std::optional<FrmPlayer> form;
};

TEST_F(FrmPlayerTest, PlaysAtItsSpeed) {
  const auto played = [this](int ticks) {
    const Millis before = form->position();
    pass(ticks);
    EXPECT_LT(playback->time() - form->position(), frameTime);
    return form->position() - before;
  };
  EXPECT_EQ(played(20), 20 * 15);
  form->changeSpeed(2);
  EXPECT_EQ(played(20), 4 * 20 * 15);
  form->changeSpeed(100);
  EXPECT_EQ(form->speed(), 16);
  form->changeSpeed(-100);
  EXPECT_EQ(played(20), 20 * 15 / 4);
  press(' ');
  EXPECT_FALSE(form->isPlaying());
  EXPECT_EQ(played(20), 0);
}

TEST_F(FrmPlayerTest, PausesAtTheEndAndPlaysAgainFromTheStart) {
  form->jump(playback->length());
  pass(2);
  EXPECT_FALSE(form->isPlaying());
  press(' ');
  EXPECT_TRUE(form->isPlaying());
  EXPECT_LT(playback->time(), frameTime);
}

TEST_F(FrmPlayerTest, JumpsToCapturesAndLines) {
  press(' ');
  const auto isMarked = [this](Mark::Kind kind) {
    const auto& marks = playback->marks();
    return std::any_of(marks.begin(), marks.end(),
                       [&](const Mark& mark) { return mark.kind == kind && mark.time - 1500 == form->position(); });
  };
  press('c');
  const Millis first = form->position();
  EXPECT_TRUE(isMarked(Mark::Kind::Capture));
  press('c');
  EXPECT_GT(form->position(), first);
  press('C');
  EXPECT_EQ(form->position(), first);
  press('l');
  EXPECT_GT(form->position(), first);
  EXPECT_TRUE(isMarked(Mark::Kind::Line));
}

TEST_F(FrmPlayerTest, GoesBackFromMarkToMarkWhilePlaying) {
  const auto press = [this](char key) {
    FrmPlayerTest::press(key);
    pass(3);
    return form->position();
  };
  std::vector<Millis> forward;
  for (int i = 0; i < 3; ++i) forward.push_back(press('l'));
  EXPECT_LT(forward[0], forward[1]);
  EXPECT_LT(forward[1], forward[2]);
  EXPECT_TRUE(form->isPlaying());
  EXPECT_LT(press('L'), forward[2]);
  const Millis back = form->position();
  EXPECT_LT(press('L'), back);
}

TEST_F(FrmPlayerTest, GoesBackToAMarkThatHasJustBeenSeen) {
  press('c');
  const Millis before = form->position();
  for (int i = 0; form->position() < before + 1600 && i < 1000; ++i) pass(1);
  press('C');
  EXPECT_EQ(form->position(), before);
}

TEST_F(FrmPlayerTest, JumpsToATypedTimeAndToTheBarsMiddle) {
  press(' ');
  form->txtTime.Text.adopt("0:07");
  form->txtTime.KeyPress(keyEnter);
  playback->wait();
  EXPECT_NEAR(static_cast<double>(playback->time()), 7000, frameTime);
  EXPECT_EQ(form->txtTime.Text.get(), "");
  form->strip.MouseDown(leftButton, 0, form->strip.Width / 2, 18 * 15);
  playback->wait();
  EXPECT_NEAR(static_cast<double>(playback->time()), static_cast<double>(playback->length()) / 2, 100);
}

TEST_F(FrmPlayerTest, JumpsToAChosenLine) {
  press(' ');
  pass(1);
  const auto& marks = playback->marks();
  std::vector<Millis> times;
  for (const Mark& mark : marks) {
    if (mark.kind == Mark::Kind::Line) times.push_back(mark.time);
  }
  ASSERT_EQ(form->grdLines.Rows, static_cast<int>(times.size()) + 1);
  // The first one, and each again.
  for (const int line : {1, 6, 6, 1}) {
    form->jump(0);
    form->grdLines.adoptCell(line, 1);
    pass(1);
    const Millis time = times.at(static_cast<std::size_t>(line - 1));
    EXPECT_EQ(form->position(), time);
    EXPECT_EQ(form->grdLines.TextMatrix(line, 0), clockText(time));
  }
}

TEST_F(FrmPlayerTest, MusicPlaysOnlyAtTheRecordingsOwnPace) {
  pass(1);
  const HeadlessBackend& machine = client.machine;
  ASSERT_EQ(machine.tracks.size(), 1U);
  EXPECT_EQ(machine.playState, psPlaying);
  form->changeSpeed(1);
  pass(1);
  EXPECT_EQ(machine.playState, psStopped);
  form->changeSpeed(-1);
  pass(1);
  EXPECT_EQ(machine.playState, psPlaying);
  press(' ');
  pass(1);
  EXPECT_EQ(machine.playState, psStopped);
  EXPECT_EQ(machine.tracks.size(), 2U);
}

TEST_F(FrmPlayerTest, QuestionMarkListsTheKeys) {
  press('?');
  ASSERT_EQ(client.machine.messageBoxes.size(), 1U);
  EXPECT_NE(client.machine.messageBoxes[0].find("previous capture"), std::string::npos);
}

TEST(Playback, WaitsAMinuteForAWindowAtMost) {
  auto [scout, ours] = Channel::pair();
  Millis asked = 0;
  // A game that never shows a window.
  std::thread game([&asked, channel = std::move(scout)] {
    auto [orders, theirs] = Channel::pair();
    Pack snapshot;
    snapshot.field(Report::Snapshot);
    snapshot.field(Millis{0});
    channel.send(snapshot.bytes, theirs);
    const auto runner = orders.receive();
    for (auto order = runner->passed.receive(); order; order = runner->passed.receive()) {
      asked = Unpack(order->text).value<Target>().time;
      if (asked > 600'000) return;
      Pack state;
      state.field(asked);
      state.field(std::uint64_t{0});                            // frames
      for (int i = 0; i < 2; ++i) state.field(std::size_t{0});  // forms, boxes
      state.field(std::string());                               // music
      state.field(std::uint64_t{0});
      state.field(std::size_t{0});  // sounds
      runner->passed.send(state.bytes);
    }
  });
  {
    const HeadlessClient client;
    Playback playback(std::move(ours));
    playback.goToFirstWindow();
    EXPECT_FALSE(playback.isAtEnd());
  }
  game.join();
  EXPECT_EQ(asked, 60'000);
}

class SnapshotPlanTest : public testing::Test {
 protected:
  /// The times of all snapshots in so many hours.
  static std::vector<Millis> times(Millis hours, double pixels) {
    SnapshotPlan plan(120'000);
    std::vector<Millis> all;
    for (Millis now = 0; now <= hours * 3'600'000; now += 10'000) {
      if (!plan.isDue(now)) continue;
      all.push_back(now);
      plan.leave(now, pixels);
    }
    return all;
  }
};

TEST_F(SnapshotPlanTest, LeavesOneEveryTwoMinutesInTheFirstHour) {
  EXPECT_EQ(times(1, 800 * 600).size(), 31U);
  EXPECT_EQ(times(1, 1920 * 1040).size(), 31U);
}

TEST_F(SnapshotPlanTest, LeavesABoundedNumber) { EXPECT_EQ(times(1000, 800 * 600).size(), 100U); }

TEST_F(SnapshotPlanTest, LeavesFewerOfLargeWindows) {
  constexpr double pixels = 36'000'000;
  const std::vector<Millis> few = times(1000, pixels);
  EXPECT_GE(few.size(), 2U);
  EXPECT_LT(static_cast<double>(few.size() - 1) * pixels, SnapshotPlan::maxPixels);
  EXPECT_GT(few[1], 600'000);
}

TEST(ClockText, ShowsHoursOnlyIfThereAreAny) {
  EXPECT_EQ(clockText(0), "0:00");
  EXPECT_EQ(clockText(59'999), "0:59");
  EXPECT_EQ(clockText(754'000), "12:34");
  EXPECT_EQ(clockText(3'723'000), "1:02:03");
}

TEST(ClockText, ReadsWhatAUserTypes) {
  EXPECT_EQ(timeFromText("7"), 7000);
  EXPECT_EQ(timeFromText("12:34"), 754'000);
  EXPECT_EQ(timeFromText("1:02:03"), 3'723'000);
  for (const char* text : {"", ":", "1:", "a", "-1", "1:2:3:4", "9999999"}) EXPECT_EQ(timeFromText(text), std::nullopt);
}

class MarkFinderTest : public GameTest {
 protected:
  std::vector<std::string> found() {
    std::vector<std::string> texts;
    for (const Mark& mark : finder.find(1000)) {
      const std::string capture = mark.isOwn ? "own capture" : "capture";
      texts.push_back(mark.kind == Mark::Kind::Capture ? capture + mark.text : mark.text);
    }
    return texts;
  }
  using Texts = std::vector<std::string>;
  MarkFinder finder;
};

TEST_F(MarkFinderTest, ACaptureIsMarkedOnceAndWithoutNames) {
  login();
  auto& world = modMain::world;
  clsPlayer& bob = world.opponents.at(static_cast<std::size_t>(join(8, 1, "Bob")));
  clsPlayer& eve = world.opponents.at(static_cast<std::size_t>(join(9, 2, "Eve")));
  found();
  bob.kills = 1;
  eve.alive = false;
  EXPECT_EQ(found(), Texts{"capture"});
  EXPECT_EQ(found(), Texts{});
  world.localPlayer.alive = false;
  EXPECT_EQ(found(), Texts{"own capture"});
  eve.alive = true;
  EXPECT_EQ(found(), Texts{});
  eve.isConnected = false;
  EXPECT_EQ(found(), Texts{});
}

TEST_F(MarkFinderTest, FindsEachNewLineOnce) {
  printChat("one", LineType::PublicChat);
  found();
  printChat("two", LineType::PublicChat);
  printChat("two", LineType::PublicChat);
  EXPECT_EQ(found(), (Texts{"two", "two"}));
  EXPECT_EQ(found(), Texts{});
}

}  // namespace
}  // namespace kelvora::player
