#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "app/recordGame.h"
#include "app/replayGame.h"
#include "core/modMain.h"
#include "generated/sourceFolder.h"
#include "platform/recording/file.h"
#include "platform/recording/format.h"
#include "platform/windowing/faultReport.h"
#include "raster/surface.h"
#include "tests/app/recordedMatch.h"
#include "tests/support/gameTest.h"
#include "tests/support/temporaryFolder.h"

namespace kelvora {
namespace {

using recording::ReplayEnd;

class ReplayTest : public testing::Test {
 protected:
  /// Returns the fault that has ended the game; empty if none has.
  std::string record(const RecordedMatch::Rules& rules, const RecordedMatch::Script& script) const {
    RecordedMatch match(path_, rules, script);
    match.play();
    return match.fault;
  }

  ReplayReport replay(const std::function<void()>& onFrame250 = nullptr) const {
    const HeadlessClient client;
    return replayGame(recording::openRecording(path_), KELVORA_SOURCE_DIR, [&](recording::Replay& replay) {
      replay.pictureSource = testPicture;
      replay.onFrame = [&] {
        if (onFrame250 && replay.frames() == 250) onFrame250();
        return true;
      };
    });
  }

  std::string bytes() const {
    std::ifstream file(path_, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  void write(const std::string& bytes) const { std::ofstream(path_, std::ios::binary) << bytes; }

  /// The recording without its compression.
  std::string contents() const {
    const recording::Reader::Source source = recording::openRecording(path_);
    std::string all;
    for (std::string part = source(); !part.empty(); part = source()) all += part;
    return all;
  }

  std::string refusal() const {
    try {
      recording::openRecording(path_);
    } catch (const recording::Damaged& damage) {
      return damage.what();
    }
    return {};
  }

  const TemporaryFolder folder_;
  const std::string path_ = (folder_.path() / "game.recording").string();
};

void playOn(RecordedMatch& match) {
  if (match.frame() == 100) match.logIn();
  if (!modMain::world.localPlayer.isConnected) return;
  match.steer();
  if (match.every(4)) match.respawn();
  if (match.every(7)) match.type("still here");
}

TEST_F(ReplayTest, EveryComparisonOfAMatchIsEqual) {
  record({.seconds = 20}, playOn);
  const ReplayReport report = replay();
  EXPECT_TRUE(report.isExact()) << report.text;
  EXPECT_EQ(report.version, appVersionText());
  // The last pass closes the window, and the first 100 wait for the login. The clock also runs within frames.
  EXPECT_EQ(report.frames, 2'001U - 100);
  EXPECT_EQ(report.checks, 19U);
  EXPECT_GT(report.duration, 20'000);
}

TEST_F(ReplayTest, ADifferenceIsShownWithItsFrameAndTheStateThatDiffers) {
  record({.seconds = 6}, playOn);
  const ReplayReport report = replay([] { modMain::world.localPlayer.kills = 7; });
  EXPECT_FALSE(report.isExact());
  ASSERT_FALSE(report.differences.empty());
  EXPECT_EQ(report.differences.front().frame, 300U);
  EXPECT_EQ(report.differences.front().parts, std::vector<std::string>{"the local player"});
}

TEST_F(ReplayTest, ContainsNoPassword) {
  record({.seconds = 3}, playOn);
  const std::string all = contents();
  EXPECT_NE(all.find("Ann"), std::string::npos);
  EXPECT_EQ(all.find(RecordedMatch::password), std::string::npos);
}

TEST_F(ReplayTest, ContainsNoStoredPassword) {
  record({.seconds = 2,
          .settings = {{{"last login", "server password"}, "swordfish"}, {{"last login", "player name"}, "Zoe"}}},
         [](RecordedMatch&) {});
  EXPECT_NE(contents().find("Zoe"), std::string::npos);
  EXPECT_EQ(contents().find("swordfish"), std::string::npos);
}

/// Types a line into the chat line, or over the picture, from where the game takes it to the chat line.
void typeByKeys(const std::string& line, bool isOverPicture) {
  TextBox& box = frmMain->txtChat;
  Control& target = isOverPicture ? static_cast<Control&>(frmMain->canvas) : box;
  for (std::size_t i = 0; i < line.size(); ++i) {
    target.KeyDown(line[i] - 'a' + 'A', 0);
    target.KeyPress(line[i]);
    if (isOverPicture) continue;
    box.Text.adopt(line.substr(0, i + 1));
    box.SelStart.adopt(static_cast<int>(i + 1));
  }
}

TEST_F(ReplayTest, ContainsNoPasswordOfACommand) {
  std::string sent;
  record({.seconds = 7}, [&](RecordedMatch& match) {
    playOn(match);
    if (match.frame() == 400) typeByKeys("!login swordfish", false);
    if (match.frame() == 405) frmMain->txtChat.KeyPress(keyEnter);
    if (match.frame() == 450) typeByKeys("!claim haddock", true);
    if (match.frame() == 455) match.type(frmMain->txtChat.Text);
    if (match.frame() == 500) match.type("~?");
    if (match.frame() == 550) typeByKeys("to all", false);
    sent += match.server().sent;
  });
  EXPECT_NE(sent.find("!login swordfish"), std::string::npos) << "the game itself isn't touched";
  EXPECT_NE(sent.find("!claim haddock"), std::string::npos);
  EXPECT_EQ(contents().find("wordfish"), std::string::npos);
  EXPECT_EQ(contents().find("haddock"), std::string::npos);
  std::string keys;
  std::string line;
  const ReplayReport report = replay([&] {
    for (Control* control : {static_cast<Control*>(&frmMain->txtChat), static_cast<Control*>(&frmMain->canvas)}) {
      control->KeyPress = [&keys, &line, press = control->KeyPress](int code) {
        if (code != keyEnter) keys += static_cast<char>(code);
        if (frmMain->txtChat.Text.get().size() > line.size()) line = frmMain->txtChat.Text;
        press(code);
      };
      control->KeyDown = [press = control->KeyDown](int code, int shift) {
        if (frmMain->txtChat.Text.get().starts_with('!')) {
          EXPECT_TRUE(code == 0 || code == keyEnter) << code;
        }
        press(code, shift);
      };
    }
  });
  EXPECT_TRUE(report.isExact()) << report.text;
  EXPECT_EQ(keys, "!" + std::string(15, '*') + "!" + std::string(13, '*') + "to all");
  EXPECT_EQ(line, "!" + std::string(15, '*'));
}

TEST_F(ReplayTest, AKilledGameLosesAtMostASecond) {
  std::string atKill;
  record({.seconds = 6}, [&](RecordedMatch& match) {
    playOn(match);
    if (match.frame() == 500) atKill = bytes();
  });
  write(atKill);
  const ReplayReport report = replay();
  EXPECT_TRUE(report.isExact()) << report.text;
  EXPECT_GE(report.duration, 4'000);
  EXPECT_LE(report.frames, 500U);
}

TEST_F(ReplayTest, ReproducesAFaultAtTheStart) {
  const RecordedMatch::Rules rules{.seconds = 2, .settings = {{{"last login", "player color"}, "red"}}};
  EXPECT_EQ(record(rules, [](RecordedMatch&) {}), "Type mismatch");
  const ReplayReport report = replay();
  EXPECT_EQ(report.reason, ReplayEnd::Reason::Fault);
  EXPECT_EQ(report.text, "Type mismatch");
  EXPECT_EQ(report.recordedFault, "Type mismatch");
}

TEST_F(ReplayTest, ReproducesAFaultInAHandler) {
  const std::string fault = record({.seconds = 6}, [](RecordedMatch& game) {
    playOn(game);
    if (game.frame() != 400) return;
    game.machine.settings[{"last login", "player color"}] = "red";
    game.reconnect();
  });
  EXPECT_EQ(fault, "Type mismatch");
  const ReplayReport report = replay();
  EXPECT_EQ(report.reason, ReplayEnd::Reason::Fault);
  EXPECT_EQ(report.recordedFault, "Type mismatch");
  EXPECT_EQ(report.frames, 400U - 100);
}

TEST_F(ReplayTest, AFullDiskEndsTheRecordingAndNotTheGame) {
  int frames = 0;
  RecordedMatch match("/dev/full", {.seconds = 5}, [&](RecordedMatch& game) {
    playOn(game);
    frames = game.frame();
  });
  match.play();
  EXPECT_GE(frames, 499);
  EXPECT_FALSE(match.isRecording());
}

TEST_F(ReplayTest, AGameWhoseRecordingCannotBeWrittenIsTouchedByNoRecorder) {
  HeadlessClient client;
  client.machine.pictureSource = testPicture;
  GlyphSource* const glyphs = Surface::glyphSource();
  int calls = 0;
  client.machine.onDoEvents = [&] {
    EXPECT_EQ(&backend(), &client.machine);
    EXPECT_EQ(Surface::glyphSource(), glyphs);
    if (++calls == 3) frmMain->closedByUser();
  };
  EXPECT_THROW(recordGame(std::make_unique<recording::RecordingFile>("/nowhere/a.recording"), "a"), ProcessEnded);
  EXPECT_EQ(calls, 3);
}

TEST_F(ReplayTest, AnEndThatCannotBeStoredIsNoGoodOne) {
  recording::RecordingFile full("/dev/full");
  full.put("a little");
  full.finish();
  EXPECT_FALSE(full.isGood());
  recording::RecordingFile file(path_);
  file.put("a little");
  file.finish();
  EXPECT_TRUE(file.isGood());
}

TEST(RecordGameDeathTest, AFaultAfterALossDoesNotNameTheFile) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        HeadlessClient client;
        client.machine.pictureSource = testPicture;
        client.machine.onDoEvents = [&client] {
          client.machine.advance(1100);
          if (client.machine.doEventsCount == 5) frmMain->closedByUser();
        };
        setFaultBox([](const std::string&, const std::string& advice) { std::fputs(advice.c_str(), stderr); });
        try {
          recordGame(std::make_unique<recording::RecordingFile>("/dev/full"), "full.recording");
        } catch (const ProcessEnded&) {
          reportFault("Overflow");
        }
      },
      testing::ExitedWithCode(1),
      "the recording full.recording can't be written any more and ends here\n.*add what you did last");
}

TEST_F(ReplayTest, RefusesANewerFormatByName) {
  record({.seconds = 2}, playOn);
  std::string newer = bytes();
  newer[recording::magic.size()] = static_cast<char>(recording::formatVersion + 1);
  write(newer);
  EXPECT_EQ(refusal(), "it has format 2, which is newer than this program's format 1");
}

TEST_F(ReplayTest, RefusesOtherFiles) {
  EXPECT_EQ(refusal(), "there is no such file");
  write("a text");
  EXPECT_EQ(refusal(), "it is no recording");
  write("kelvora round\n\x01 and more");
  EXPECT_EQ(refusal(), "it is a server's round, which kelvora-server --replay shows");
}

TEST_F(ReplayTest, CompressedStreamsMayFollowOneAnother) {
  const auto fileOf = [&](const std::string& text) {
    {
      recording::RecordingFile file(path_);
      file.put(text);
      file.finish();
    }
    return bytes();
  };
  const std::string first = fileOf("one, ");
  const std::string second = fileOf("two").substr(recording::magic.size() + 1);
  write(first + second + second.substr(0, second.size() - 4));
  EXPECT_EQ(contents(), "one, twotwo");
}

TEST_F(ReplayTest, DamagedBytesEndTheReplay) {
  record({.seconds = 3}, playOn);
  std::string damaged = bytes();
  // A compressed block of an undefined kind.
  damaged.replace(recording::magic.size() + 1 + 2, 1, 1, '\x07');
  write(damaged);
  const ReplayReport report = replay();
  EXPECT_EQ(report.reason, ReplayEnd::Reason::Damaged);
  EXPECT_EQ(report.text, "its bytes are damaged");
}

}  // namespace
}  // namespace kelvora
