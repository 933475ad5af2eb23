#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "app/player/pack.h"
#include "tests/app/playerTest.h"
#include "tests/app/recordedMatch.h"
#include "tests/support/temporaryFolder.h"

namespace kelvora::player {
namespace {

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
  void record(const RecordedMatch::Script& script) const {
    RecordedMatch match(path, {.bots = 1, .seconds = 4}, [&](RecordedMatch& game) {
      if (game.frame() == 20) game.logIn();
      script(game);
    });
    match.play();
  }

  const TemporaryFolder folder;
  const std::string path = (folder.path() / "player.recording").string();
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
  scoutWhole(playback);
  EXPECT_EQ(playback.ending(), "Type mismatch");
}

TEST_F(RecordedPlayerTest, DamageIsTheEnding) {
  std::ifstream whole(recordingOf("easy"), std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(whole), {}};
  std::fill(bytes.end() - 2000, bytes.end() - 1000, '\0');
  std::ofstream(path, std::ios::binary) << bytes;
  const HeadlessClient client;
  Playback playback(scoutOf(path));
  scoutWhole(playback);
  EXPECT_EQ(playback.ending(), "The recording is damaged here.");
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

}  // namespace
}  // namespace kelvora::player
