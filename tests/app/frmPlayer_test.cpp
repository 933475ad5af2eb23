#include "app/player/frmPlayer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "app/clockText.h"
#include "tests/app/playerTest.h"

namespace kelvora::player {
namespace {

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

TEST_F(FrmPlayerTest, OnlyTheButtonsRowHasButtons) {
  // The play button's column; the row's middle is 50 pixels below the strip's top, and the ending's line is at 72.
  const auto click = [this](float row) {
    form->strip.MouseDown(leftButton, 0, 54 * 15, row * 15);
    form->strip.MouseUp(leftButton, 0, 54 * 15, row * 15);
    return form->isPlaying();
  };
  EXPECT_FALSE(click(50));
  EXPECT_FALSE(click(80)) << "on the ending's line";
  EXPECT_TRUE(click(50));
  EXPECT_TRUE(click(80));
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
  for (const int line : {1, 6, 1}) {
    form->jump(0);
    pass(1);
    form->grdLines.adoptCell(line, 1);
    pass(1);
    const Millis time = times.at(static_cast<std::size_t>(line - 1));
    EXPECT_EQ(form->position(), time);
    EXPECT_EQ(form->grdLines.TextMatrix(line, 0), clockText(time));
  }
}

TEST_F(FrmPlayerTest, MarksTheLastLineSoFar) {
  press(' ');
  std::vector<Millis> times;
  for (const Mark& mark : playback->marks()) {
    if (mark.kind == Mark::Kind::Line) times.push_back(mark.time);
  }
  ASSERT_GE(times.size(), 3U);
  const auto markedAt = [this](Millis time) {
    form->jump(time);
    pass(2);
    EXPECT_EQ(form->position(), time) << "a mark is no choice";
    return static_cast<int>(form->grdLines.Row);
  };
  for (const Millis time : {times.back(), times[2], times[0], times[0] - 1, times[1]}) {
    const auto seen = std::count_if(times.begin(), times.end(), [time](Millis line) { return line <= time; });
    EXPECT_EQ(markedAt(time), seen) << time;
  }
}

TEST_F(FrmPlayerTest, ADoubleClickJumpsBackToTheMarkedLine) {
  press(' ');
  form->grdLines.adoptCell(2, 1);
  pass(1);
  const Millis line = form->position();
  form->jump(line + 50);
  pass(1);
  ASSERT_EQ(form->grdLines.Row, 2);
  form->grdLines.DblClick();
  EXPECT_EQ(form->position(), line);
}

TEST_F(FrmPlayerTest, ATextThatIsNoTimeStaysWithAWord) {
  press(' ');
  const Millis before = form->position();
  const std::string hint = form->lblHint.Caption;
  form->txtTime.Text.adopt("xyz");
  form->txtTime.KeyPress(keyEnter);
  EXPECT_EQ(form->position(), before);
  EXPECT_EQ(form->txtTime.Text.get(), "xyz");
  EXPECT_EQ(form->lblHint.Caption.get(), "Type minutes and seconds, such as 12:30.");
  form->txtTime.Text.adopt("0:05");
  form->txtTime.KeyPress(keyEnter);
  EXPECT_EQ(form->position(), 5000);
  EXPECT_EQ(form->lblHint.Caption.get(), hint);
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

TEST_F(FrmPlayerTest, PlayingPausesOnlyWhileTheKeysAreListed) {
  bool wasPlaying = true;
  client.machine.onMessageBox = [&](const std::string&) { wasPlaying = form->isPlaying(); };
  press('?');
  EXPECT_FALSE(wasPlaying);
  EXPECT_TRUE(form->isPlaying());
  press(' ');
  press('?');
  EXPECT_FALSE(form->isPlaying());
}

}  // namespace
}  // namespace kelvora::player
