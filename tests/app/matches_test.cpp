// Ten recorded matches. A replay that differs shows which frame an unwanted change of a rule first alters.
//
// After an intended change, record them again:
//   KELVORA_UPDATE_RECORDINGS=1 build/debug/tests/kelvora_app_tests --gtest_filter='*Matches*'

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "app/replayGame.h"
#include "audio/frmMusic.h"
#include "core/modMain.h"
#include "frontend/frmConnect.h"
#include "frontend/frmFonts.h"
#include "frontend/frmGameFind.h"
#include "generated/sourceFolder.h"
#include "platform/recording/file.h"
#include "store/frmPowerups.h"
#include "tests/app/recordedMatch.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

bool isPlaying() { return modMain::world.localPlayer.isConnected; }

void play(RecordedMatch& match) {
  if (match.frame() == 20) match.logIn();
  if (!isPlaying()) return;
  match.steer();
  if (match.every(2)) match.respawn();
  if (match.every(3, 1) && modMain::world.localPlayer.breaksOn) frmMain->canvas.MouseDown(2, 0, 0, 0);
  if (match.every(7)) match.type("still here");
}

void trade(RecordedMatch& match) {
  play(match);
  if (!isPlaying()) return;
  if (match.every(3, 0.5)) frmMain->btnShop.Click();
  if (frmPowerups.isVisible()) {
    const int item = match.frame() / 300 % powerupSlotCount;
    if (match.every(3, 0.8)) frmPowerups->cmdBuy[item].Click();
    if (match.every(6, 4)) frmPowerups->cmdSell[item].Click();
    if (match.every(3, 1.2)) frmPowerups->cmdDone.Click();
  }
  if (match.every(1, 0.3)) frmMain->txtChat.KeyDown(keyF1 + match.frame() / 100 % powerupSlotCount, 0);
}

void loseConnections(RecordedMatch& match) {
  play(match);
  if (match.every(5, 4) && isPlaying()) match.losePower();
  if (match.every(5, 4.5) && frmConnect.isVisible()) match.logIn();
  if (match.every(5, 2) && match.frame() > 500 && isPlaying()) frmMain->mnuFileDisconnect.Click();
  if (match.every(5, 2.5) && match.frame() > 500 && !isPlaying()) {
    frmConnect.isVisible() ? match.logIn() : match.reconnect();
  }
}

void openBoxes(RecordedMatch& match) {
  if (match.frame() == 5) {
    frmConnect->txtServerPort.Text.adopt("99999");
    frmConnect->cmdConnect.Click();
    frmConnect->txtServerPort.Text.adopt("2010");
    frmConnect->txtPlayerName.Text.adopt("");
    frmConnect->cmdConnect.Click();
    match.logIn("a wrong one");
  }
  if (match.frame() == 100 && frmConnect.isVisible()) match.logIn();
  if (match.frame() > 100) play(match);
  if (match.every(3) && isPlaying()) match.type("~?");
}

void resize(RecordedMatch& match) {
  play(match);
  if (match.every(4, 1)) frmMain->clientResized(18'000, 12'000);
  if (match.every(4, 2)) frmMain->clientResized(3'000, 1'500);
  if (match.every(4, 3)) frmMain->clientResized(13'410, 10'050);
}

void openDialogs(RecordedMatch& match) {
  match.machine.onModal = [&match](Form& form) {
    if (&form == (frmGameFind.isLoaded() ? &*frmGameFind : nullptr)) {
      frmGameFind->chkFull.Value.adopt(1);
      frmGameFind->chkFull.MouseDown(1, 0, 0, 0);
      frmGameFind->cmdRefresh.Click();
      match.machine.doEvents(false);
      frmGameFind->closedByUser();
    } else {
      frmConnect->lblShapeSelect.MouseDown(1, 0, 450, 150);
      frmConnect->cmdGetList.Click();
      frmConnect->cmdCancel.Click();
    }
  };
  play(match);
  if (!isPlaying()) return;
  if (match.every(4, 1)) frmMain->mnuFileConnect.Click();
  if (match.every(4, 2)) match.type("~showmusic");
  if (match.every(4, 3) && frmMusic.isVisible()) frmMusic->closedByUser();
  if (match.every(4, 3.5)) frmMain->mnuFonts.Click();
  if (match.every(4, 3.8)) frmFonts->closedByUser();
}

void changeColours(RecordedMatch& match) {
  play(match);
  if (match.every(3, 1)) frmMain->mnuFonts.Click();
  if (frmFonts.isVisible()) {
    if (match.every(3, 1.2)) {
      frmFonts->sldSize[0].Value.adopt(14);
      frmFonts->sldSize[0].Scroll();
      frmFonts->sldSize[3].Value.adopt(9);
      frmFonts->sldSize[3].Change();
    }
    if (match.every(3, 1.3)) frmFonts->lblColorRed[0].MouseMove(1, 0, 300, 60);
    if (match.every(3, 1.4)) frmFonts->lblColorBlue[3].MouseMove(1, 0, 900, 60);
    if (match.every(3, 1.5)) frmFonts->cmdClose.Click();
  }
  if (match.every(4, 2)) frmMain->mnuQuarkQuarks.Click();
  if (match.every(4)) frmMain->mnuDirLineAlways.Click();
}

struct Match {
  const char* name;
  RecordedMatch::Rules rules;
  RecordedMatch::Script script;
};

const std::vector<Match>& matches() {
  using server::SkillLevel;
  static const std::vector<Match> all = {
      {"easy", {.skill = SkillLevel::easy, .seed = 1}, play},
      {"normal", {.skill = SkillLevel::normal, .seed = 2}, play},
      {"hard", {.skill = SkillLevel::hard, .seed = 3}, play},
      {"trade", {.skill = SkillLevel::mixed, .seed = 4}, trade},
      {"connections", {.bots = 3, .seed = 5}, loseConnections},
      {"boxes", {.bots = 2, .seed = 6, .seconds = 12}, openBoxes},
      {"sizes", {.bots = 3, .seed = 7, .seconds = 12}, resize},
      {"dialogs", {.bots = 2, .seed = 8, .seconds = 12}, openDialogs},
      {"colours", {.bots = 3, .seed = 9, .seconds = 12}, changeColours},
      {"slow", {.bots = 4, .seed = 10, .frameMs = 30}, play},
  };
  return all;
}

class Matches : public testing::TestWithParam<std::size_t> {};

TEST_P(Matches, AreReplayedExactly) {
  const Match& match = matches()[GetParam()];
  const std::string file = std::string(KELVORA_SOURCE_DIR) + "/tests/app/recordings/" + match.name;
  if (std::getenv("KELVORA_UPDATE_RECORDINGS")) {
    RecordedMatch recorded(file, match.rules, match.script);
    recorded.play();
    ASSERT_EQ(recorded.fault, "");
  }
  const HeadlessClient client;
  const ReplayReport report = replayGame(recording::openRecording(file), KELVORA_SOURCE_DIR,
                                         [](recording::Replay& replay) { replay.pictureSource = testPicture; });
  EXPECT_EQ(report.text, "");
  for (const recording::Difference& difference : report.differences) {
    ADD_FAILURE() << "frame " << difference.frame << " differs in " << difference.parts.front();
  }
  EXPECT_TRUE(report.isExact());
  EXPECT_GE(report.checks, static_cast<unsigned>(match.rules.seconds * 1000 / match.rules.frameMs / 100 / 2));
}

INSTANTIATE_TEST_SUITE_P(All, Matches, testing::Range<std::size_t>(0, 10),
                         [](const auto& match) { return std::string(matches()[match.param].name); });

}  // namespace
}  // namespace kelvora
