#include "frontend/updateCheck.h"

#include <gtest/gtest.h>

#include "base/fault.h"
#include "generated/version.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

using Boxes = std::vector<std::string>;

class UpdateCheck : public GameTest {
 protected:
  HeadlessSocket& host() { return machine.socketOf(frmMain->sockUpdates); }
  void startCheck() {
    updateCheck::checkForUpdates();
    host().acceptConnection();
    passEvents();
  }
  /// Runs a whole check, which ends when the host closes.
  void answer(const std::string& text) {
    startCheck();
    host().deliver(text);
    host().closeByServer();
    passEvents();
  }
  static Boxes boxOf(const std::string& version) {
    return {"The version " + version +
            " is available to download\nfrom web.invalid.  You can only connect to \nservers running the same version "
            "as you.  Please update."};
  }
  /// Starts the game up to its first DoEvents.
  void startGame() {
    machine.onDoEvents = [] { throw ProcessEnded{}; };
    EXPECT_THROW(modMain::startGame(), ProcessEnded);
    machine.onDoEvents = nullptr;
  }
};

TEST_F(UpdateCheck, ConnectsToTheWebHostAtPort80) {
  updateCheck::checkForUpdates();
  EXPECT_EQ(host().connects, (std::vector<std::pair<std::string, int>>{{"web.invalid", 80}}));
  EXPECT_EQ(frmMain->sockUpdates.RemoteHost, "web.invalid");
  EXPECT_EQ(frmMain->sockUpdates.RemotePort, 80);
}

TEST_F(UpdateCheck, ConnectsToTheWebHostsOwnPort) {
  machine.host = "127.0.0.1:8123";
  updateCheck::checkForUpdates();
  EXPECT_EQ(host().connects, (std::vector<std::pair<std::string, int>>{{"127.0.0.1", 8123}}));
}

TEST_F(UpdateCheck, RunsOncePerRunOfTheProgram) {
  updateCheck::checkForUpdates();
  frmMain->sockUpdates.Close();
  updateCheck::checkForUpdates();
  EXPECT_EQ(host().connects.size(), 1U);
  EXPECT_EQ(frmMain->sockUpdates.State(), sckClosed);
}

TEST_F(UpdateCheck, ClosesASocketThatIsNotClosed) {
  host().setState(sckError);
  updateCheck::checkForUpdates();
  EXPECT_EQ(host().closes, 1);
  EXPECT_EQ(host().connects.size(), 1U);
}

TEST_F(UpdateCheck, FaultEndsItSilently) {
  machine.settings[{"audio", "music"}] = "maybe";  // so that the window fails to load
  EXPECT_NO_THROW(updateCheck::checkForUpdates());
  machine.settings.clear();
  updateCheck::checkForUpdates();
  EXPECT_TRUE(host().connects.empty()) << "it counts as done";
}

TEST_F(UpdateCheck, Q279RequestIsOneLineWithTheFullAddress) {
  startCheck();
  EXPECT_EQ(host().sends, Boxes{"GET http://web.invalid/games/kelvora/ver.txt HTTP/1.0\r\n\r\n"});
}

TEST_F(UpdateCheck, NamesAPortThatIsNot80InTheRequestButNotInTheBox) {
  machine.host = "web.invalid:8123";
  answer("tvqver:7.2.2\n");
  EXPECT_EQ(host().sends, Boxes{"GET http://web.invalid:8123/games/kelvora/ver.txt HTTP/1.0\r\n\r\n"});
  EXPECT_EQ(machine.messageBoxes, boxOf("7.2.2"));
}

TEST_F(UpdateCheck, ANewConnectionEmptiesTheBuffer) {
  frmMain->updateBuffer = "tvqver:9.9.9\n";
  startCheck();
  EXPECT_EQ(frmMain->updateBuffer, "");
}

TEST_F(UpdateCheck, CollectsAnAnswerInPieces) {
  startCheck();
  host().deliverInReads({"HTTP/1.0 200 OK\r\n\r\ntvq", "ver:1.", "2.", "3\r\n"});
  passEvents();
  EXPECT_EQ(frmMain->updateBuffer, "HTTP/1.0 200 OK\r\n\r\ntvqver:1.2.3\r\n");
  EXPECT_TRUE(machine.messageBoxes.empty()) << "it is read when the host closes";
  host().closeByServer();
  passEvents();
  EXPECT_EQ(machine.messageBoxes, boxOf("1.2.3"));
}

TEST_F(UpdateCheck, ClosesItsSocketAfterTheBox) {
  startCheck();
  int stateUnderTheBox = -1;
  machine.onMessageBox = [&](const std::string&) { stateUnderTheBox = frmMain->sockUpdates.State(); };
  host().deliver("tvqver:7.2.2\n");
  host().closeByServer();
  passEvents();
  EXPECT_EQ(stateUnderTheBox, sckClosing);
  EXPECT_EQ(frmMain->sockUpdates.State(), sckClosed);
  EXPECT_EQ(host().closes, 1);
}

TEST_F(UpdateCheck, SaysNothingAboutTheSameVersion) {
  answer("HTTP/1.0 200 OK\r\nServer: x\r\n\r\ntvqver:" KELVORA_VERSION "\r\n");
  EXPECT_TRUE(machine.messageBoxes.empty());
  EXPECT_EQ(frmMain->sockUpdates.State(), sckClosed);
}

TEST_F(UpdateCheck, AnnouncesAnotherVersionInThreeLines) {
  answer("HTTP/1.0 200 OK\r\n\r\ntvqver:7.3.0\r\n");
  ASSERT_EQ(machine.messageBoxes, boxOf("7.3.0"));
  EXPECT_EQ(std::count(machine.messageBoxes[0].begin(), machine.messageBoxes[0].end(), '\n'), 2);
}

TEST_F(UpdateCheck, TheVersionEndsAtEitherLineBreak) {
  for (const char* text : {"tvqver:" KELVORA_VERSION "\n5", "tvqver:" KELVORA_VERSION "\r5",
                           "tvqver:" KELVORA_VERSION "\r\n5", "5tvqver:" KELVORA_VERSION "\n\ntvqver:2\n"}) {
    updateCheck::parseUpdateFile(text);
    EXPECT_TRUE(machine.messageBoxes.empty()) << text;
  }
}

TEST_F(UpdateCheck, Q170AFileWithoutALineBreakLosesItsLastCharacter) {
  updateCheck::parseUpdateFile("tvqver:" KELVORA_VERSION);
  EXPECT_EQ(machine.messageBoxes, boxOf(std::string(KELVORA_VERSION, sizeof KELVORA_VERSION - 2)));
  machine.messageBoxes.clear();
  // The last character is not read, and what precedes it is this version.
  updateCheck::parseUpdateFile("tvqver:" KELVORA_VERSION "3");
  EXPECT_TRUE(machine.messageBoxes.empty());
}

TEST_F(UpdateCheck, Q170FirstCharacterIsReadEvenIfItIsTheLast) {
  updateCheck::parseUpdateFile("tvqver:7");
  EXPECT_EQ(machine.messageBoxes, boxOf("7"));
}

TEST_F(UpdateCheck, Q171BlanksAndLettersAreSkipped) {
  updateCheck::parseUpdateFile("tvqver: " KELVORA_VERSION "\n");
  updateCheck::parseUpdateFile("tvqver:" KELVORA_VERSION "b\n");
  std::string mixed = "tvqver:";
  for (const char character : std::string_view(KELVORA_VERSION)) mixed += std::string("v") + character + "-\t";
  updateCheck::parseUpdateFile(mixed + " \r\n");
  EXPECT_TRUE(machine.messageBoxes.empty());
  updateCheck::parseUpdateFile("tvqver:10.20.30\n");
  EXPECT_EQ(machine.messageBoxes, boxOf("10.20.30"));
}

TEST_F(UpdateCheck, Q172AnOlderVersionIsAnnouncedToo) {
  updateCheck::parseUpdateFile("tvqver:1.0.0\n");
  EXPECT_EQ(machine.messageBoxes, boxOf("1.0.0"));
}

TEST_F(UpdateCheck, Q172AVersionWithoutDigitsIsAnnouncedToo) {
  for (const char* text : {"tvqver:\n", "tvqver:none\n", "tvqver:"}) {
    machine.messageBoxes.clear();
    updateCheck::parseUpdateFile(text);
    EXPECT_EQ(machine.messageBoxes, boxOf("")) << text;
    EXPECT_EQ(machine.messageBoxes.at(0).find("The version  is available to download\n"), 0U);
  }
}

TEST_F(UpdateCheck, Q172LeadingZerosMakeAnotherVersion) {
  updateCheck::parseUpdateFile("tvqver:0" KELVORA_VERSION "\n");
  EXPECT_EQ(machine.messageBoxes, boxOf("0" KELVORA_VERSION));
}

TEST_F(UpdateCheck, Q280TheFirstMarkerCountsEvenInTheHeaders) {
  answer("HTTP/1.0 404 Not Found\r\nX-Version: tvqver:7.3.0\r\n\r\ntvqver:" KELVORA_VERSION "\r\n");
  EXPECT_EQ(machine.messageBoxes, boxOf("7.3.0"));
}

TEST_F(UpdateCheck, SaysNothingWithoutTheMarker) {
  for (const char* text : {"", "7.2.2\n", "TVQVER:7.2.2\n", "tvqver 7.2.2\n", "HTTP/1.0 404 Not Found\r\n\r\n"}) {
    updateCheck::parseUpdateFile(text);
  }
  EXPECT_TRUE(machine.messageBoxes.empty());
}

TEST_F(UpdateCheck, UnreachableHostIsIgnoredSilently) {
  updateCheck::checkForUpdates();
  host().refuse();
  passEvents();
  EXPECT_EQ(frmMain->sockUpdates.State(), sckError);
  EXPECT_TRUE(machine.messageBoxes.empty());
}

TEST_F(UpdateCheck, AnswerOfAHostThatNeverClosesIsNotRead) {
  startCheck();
  host().deliver("tvqver:7.2.2\r\n");
  for (int i = 0; i < 100; ++i) passEvents();
  EXPECT_TRUE(machine.messageBoxes.empty());
}

TEST_F(UpdateCheck, EndlessAnswerIsAbandonedAndDiscarded) {
  startCheck();
  const std::string portion(64 * 1024, 'x');
  host().deliver("tvqver:7.2.2\r\n");
  for (int i = 0; i < 15; ++i) host().deliver(portion);
  passEvents();
  EXPECT_EQ(frmMain->sockUpdates.State(), sckConnected);
  EXPECT_EQ(frmMain->updateBuffer.size(), 15 * portion.size() + 14);
  host().deliver(portion);
  passEvents();
  EXPECT_EQ(frmMain->sockUpdates.State(), sckClosed);
  EXPECT_LT(frmMain->updateBuffer.capacity(), 1024U);
  EXPECT_TRUE(machine.messageBoxes.empty());
}

TEST_F(UpdateCheck, RunsAtStartUpIfItsMenuItemIsChecked) {
  startGame();
  EXPECT_EQ(host().connects.size(), 1U);
}

TEST_F(UpdateCheck, DoesNotRunAtStartUpIfItsMenuItemIsUnchecked) {
  machine.settings[{"misc", "updates"}] = "False";
  startGame();
  EXPECT_TRUE(host().connects.empty());
  frmMain->mnuUpdates.Click();
  EXPECT_TRUE(frmMain->mnuUpdates.Checked);
  EXPECT_TRUE(host().connects.empty()) << "the choice takes effect at the next start";
}

TEST_F(UpdateCheck, RunsAlongsideTheGame) {
  login();
  startCheck();
  host().deliver("tvqver:7.2.2\n");
  serverSends(wire::msgPing, {"1"});
  EXPECT_EQ(sentFrames().at(0).id, wire::msgPingReply);
  host().closeByServer();
  passEvents();
  EXPECT_EQ(machine.messageBoxes, boxOf("7.2.2"));
  EXPECT_EQ(frmMain->sock.State(), sckConnected);
}

}  // namespace
}  // namespace kelvora
