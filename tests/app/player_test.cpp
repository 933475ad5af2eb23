#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "app/player/clockText.h"
#include "app/player/controlState.h"
#include "app/player/engine.h"
#include "app/player/frmPlayer.h"
#include "app/player/marks.h"
#include "app/player/playback.h"
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
    const std::size_t at = line.text.find(verb);
    if (line.kind != Mark::Kind::Line || at == std::string::npos) continue;
    ++announced;
    const std::string victim = line.text.substr(at + verb.size());
    const bool isMarked = std::any_of(marks.begin(), marks.end(), [&](const Mark& mark) {
      return mark.kind == Mark::Kind::Capture && std::abs(mark.time - line.time) < 1000 &&
             mark.text.find(victim) != std::string::npos;
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
  ASSERT_GT(form->grdLines.Rows, 5);
  form->grdLines.adoptCell(5, 1);
  pass(1);
  std::vector<Millis> times;
  for (const Mark& mark : marks) {
    if (mark.kind == Mark::Kind::Line) times.push_back(mark.time);
  }
  EXPECT_EQ(form->position(), times.at(5));
  EXPECT_EQ(form->grdLines.TextMatrix(5, 0), clockText(times.at(5)));
}

TEST_F(FrmPlayerTest, QuestionMarkListsTheKeys) {
  press('?');
  ASSERT_EQ(client.machine.messageBoxes.size(), 1U);
  EXPECT_NE(client.machine.messageBoxes[0].find("previous capture"), std::string::npos);
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
    for (const Mark& mark : finder.find(1000)) texts.push_back((mark.isOwn ? "own: " : "") + mark.text);
    return texts;
  }
  using Texts = std::vector<std::string>;
  MarkFinder finder;
};

TEST_F(MarkFinderTest, ACaptureNamesWinnerAndVictim) {
  login();
  auto& world = modMain::world;
  clsPlayer& bob = world.opponents.at(static_cast<std::size_t>(join(8, 1, "Bob")));
  clsPlayer& eve = world.opponents.at(static_cast<std::size_t>(join(9, 2, "Eve")));
  found();
  bob.kills = 1;
  eve.alive = false;
  EXPECT_EQ(found(), Texts{"Bob captures Eve"});
  EXPECT_EQ(found(), Texts{});
  world.localPlayer.alive = false;
  EXPECT_EQ(found(), Texts{"own: Ann captured"});
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
