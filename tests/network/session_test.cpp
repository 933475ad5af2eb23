#include <array>
#include <cmath>
#include <memory>

#include "frontend/frmConnect.h"
#include "generated/version.h"
#include "rendering/frmGfx.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

using modMain::world;

class Session : public GameTest {
 protected:
  const ChatLine& lastLine() { return modMain::world.chatLines[0]; }
  static constexpr Colour serverLine = RGB(255, 255, 0);
};

TEST_F(Session, ConnectingStoresTheLoginAndDialsTheServer) {
  netMan::connectToServer("Ann", "game.test", 2011, "secret", bluePlayer);
  EXPECT_EQ(netMan::playerName, "Ann");
  EXPECT_EQ(netMan::serverPassword, "secret");
  EXPECT_EQ(netMan::preferredColour, bluePlayer);
  EXPECT_EQ(server().connects, (std::vector<std::pair<std::string, int>>{{"game.test", 2011}}));
  EXPECT_FALSE(frmMain->mnuFileConnect.Enabled);
  EXPECT_TRUE(frmMain->mnuFileDisconnect.Enabled);
}

TEST_F(Session, LoginIsSentOnceConnected) {
  netMan::connectToServer("Ann", "127.0.0.1", 2010, "pw", greenPlayer);
  EXPECT_TRUE(server().sent.empty());
  server().acceptConnection();
  passEvents();
  EXPECT_EQ(sentFrames(), (std::vector<WireMessage>{{wire::msgLogin, {"Ann", "pw", "2", KELVORA_VERSION}}}));
  EXPECT_EQ(frmMain->lblNetStatus.Caption.get(), "Connected");
  EXPECT_FALSE(world.localPlayer.isConnected);
}

// Records, whenever a label's text becomes "Connected", whether anything has been sent by then.
class CaptionWatch : public Peer {
 public:
  CaptionWatch(Label& label, HeadlessSocket& server, std::vector<bool>& sentBefore)
      : label_(label), server_(server), sentBefore_(sentBefore) {}
  void changed(PropertyId) override {
    if (label_.Caption.get() == "Connected") sentBefore_.push_back(!server_.sent.empty());
  }

 private:
  Label& label_;
  HeadlessSocket& server_;
  std::vector<bool>& sentBefore_;
};

TEST_F(Session, StateIsShownBeforeTheLoginIsSent) {
  netMan::connectToServer("Ann", "127.0.0.1", 2010, "", redPlayer);
  std::vector<bool> sentBefore;
  Label& label = frmMain->lblNetStatus;
  label.peer = std::make_unique<CaptionWatch>(label, server(), sentBefore);
  server().acceptConnection();
  passEvents();
  label.peer.reset();
  ASSERT_FALSE(sentBefore.empty());
  EXPECT_FALSE(sentBefore.front());
  EXPECT_FALSE(server().sent.empty());
}

TEST_F(Session, AnAcceptedLoginPutsThePlayerIntoTheGame) {
  frmMain->lbUserName[1].BackColor = RGB(128, 0, 0);
  frmMain->lbUserName[1].Caption = "Bob";
  frmMain->lbcConnect.Visible = true;
  connect("Ann", redPlayer);
  serverSends(wire::msgLoginAccepted, {"3", "7", "1000", "2000"});
  EXPECT_EQ(world.localPlayer.playerIndex, -1);
  EXPECT_EQ(world.localPlayer.serverNode, 7);
  EXPECT_EQ(world.localPlayer.colour, cyanPlayer);
  EXPECT_EQ(world.localPlayer.position, (Vector{1000, 2000}));
  EXPECT_FALSE(world.localPlayer.awaitingFirstPosition);
  EXPECT_TRUE(world.localPlayer.isConnected);
  EXPECT_TRUE(world.localPlayer.alive);
  EXPECT_EQ(lastLine().text, "Login accepted, Ann you are assigned the color Cyan");
  EXPECT_EQ(lastLine().colour, serverLine);
  EXPECT_EQ(modMain::world.centreMessage, "Capture your opponents in a loop of your tail");
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(frmMain->lbUserName[i].Caption.get(), i == 3 ? "Ann" : i == 1 ? "Bob" : "") << "others keep theirs " << i;
    EXPECT_EQ(frmMain->lbUserName[i].BackColor.get(), i == 3 ? RGB(128, 0, 0) : RGB(0, 0, 0)) << i;
  }
  EXPECT_FALSE(frmMain->lbcConnect.Visible);
}

TEST_F(Session, Q071LoginCreatesTheFieldTwice) {
  connect();
  // A background particle takes three draws for its colour, one for its depth, four for its position and four for its
  // velocity. A field has 150 of them. After two fields the generator is 2 * 150 * 12 draws further.
  RandomGenerator expected = machine.generator;
  serverSends(wire::msgLoginAccepted, {"0", "7", "50000", "50000"});
  for (int i = 0; i < 2 * 150 * 12; ++i) expected.next();
  EXPECT_EQ(machine.generator.next(), expected.next());
  EXPECT_EQ(modMain::world.particleCount, 150);
}

TEST_F(Session, LoginCreatesTheFieldAroundTheNewPosition) {
  connect();
  serverSends(wire::msgLoginAccepted, {"0", "7", "90000", "80000"});
  ASSERT_EQ(modMain::world.particleCount, 150);
  for (std::size_t i = 0; i < 150; ++i) {
    const Vector place = modMain::world.particles[i].getPosition();
    // One canvas width and height to each side. Before the login the position was 0, 0.
    EXPECT_LE(std::fabs(place.x - 90'000), 11'445) << i;
    EXPECT_LE(std::fabs(place.y - 80'000), 9'120) << i;
  }
}

TEST_F(Session, Q072AColourWithoutANameSkipsTheRestOfTheLogin) {
  frmMain->lbcConnect.Visible = true;
  connect();
  serverSends(wire::msgLoginAccepted, {"6", "7", "1000", "2000"});
  EXPECT_TRUE(world.localPlayer.isConnected);
  EXPECT_EQ(world.localPlayer.position, (Vector{1000, 2000}));
  EXPECT_EQ(lastLine().text, "");
  EXPECT_EQ(modMain::world.centreMessage, "");
  EXPECT_TRUE(frmMain->lbcConnect.Visible);

  netMan::disconnectFromServer();
  EXPECT_TRUE(frmConnect.isVisible()) << "the dialog opens anyway";
}

TEST_F(Session, Q072ANegativeColourDoesTheSame) {
  frmMain->lbcConnect.Visible = true;
  connect("Ann", redPlayer);
  serverSends(wire::msgLoginAccepted, {"-1", "7", "1000", "2000"});
  EXPECT_TRUE(world.localPlayer.isConnected);
  EXPECT_EQ(lastLine().text, "");
  EXPECT_TRUE(frmMain->lbcConnect.Visible);
}

TEST_F(Session, JoiningPlayerIsShownAndAnnounced) {
  login();
  serverSends(wire::msgPlayerJoined, {"9", "2", "Bob", "300", "400", "1", "5"});
  EXPECT_EQ(modMain::world.opponentCount, 1);
  EXPECT_TRUE(world.opponents[0].isConnected);
  EXPECT_TRUE(world.opponents[0].alive);
  EXPECT_EQ(frmMain->lbUserName[2].Caption.get(), "Bob");
  EXPECT_EQ(frmMain->lblKills[2].Caption.get(), "5");
  EXPECT_EQ(lastLine().text, "The player Bob has joined as Green");
  EXPECT_EQ(lastLine().colour, serverLine);
}

TEST_F(Session, ANewPlayersNameIsOnTheLabelOfTheirColour) {
  login();
  const char* const names[] = {"Red", "Yellow", "Green", "Cyan", "Blue", "Purple"};
  for (int colour = 0; colour < 6; ++colour) {
    const std::string name = "Bob" + std::to_string(colour);
    join(static_cast<std::int16_t>(20 + colour), static_cast<std::int16_t>(colour), name);
    EXPECT_EQ(frmMain->lbUserName[colour].Caption.get(), name);
    EXPECT_EQ(lastLine().text, "The player " + name + " has joined as " + names[colour]);
  }
  for (int colour = 0; colour < 6; ++colour) {
    EXPECT_EQ(frmMain->lbUserName[colour].Caption.get(), "Bob" + std::to_string(colour)) << "no other label changed";
  }
}

TEST_F(Session, OnlyAnAliveStateOfOneMeansAlive) {
  login();
  int expectedCount = 0;
  for (const char* alive : {"0", "2", "-1"}) {
    serverSends(wire::msgPlayerJoined, {"9", "2", "Bob", "300", "400", alive, "5"});
    ASSERT_EQ(modMain::world.opponentCount, ++expectedCount);
    EXPECT_FALSE(world.opponents.back().alive) << alive;
  }
}

TEST_F(Session, AJoinThatFailsDoesNotCount) {
  login();
  serverSends(wire::msgPlayerJoined, {"9", "6", "Odd", "300", "400", "1", "5"});
  EXPECT_EQ(modMain::world.opponentCount, 0) << "there is no kills label for the colour";
  EXPECT_EQ(join(10, 2, "Bob"), 0);
  EXPECT_EQ(world.opponents.size(), 1U);
  EXPECT_EQ(world.opponents[0].name, "Bob");
}

TEST_F(Session, LeavingPlayerIsClearedFromTheList) {
  login();
  join(9, 2, "Bob");
  frmMain->picCaps[2].ForeColor = RGB(255, 0, 0);
  frmMain->picCaps[2].DrawWidth = 5;
  frmMain->picCaps[2].Line(0, 0, 900, 150);
  serverSends(wire::msgPlayerLeft, {"9"});
  EXPECT_FALSE(world.opponents[0].isConnected);
  EXPECT_EQ(modMain::world.opponentCount, 1);
  EXPECT_EQ(lastLine().text, "Bob has disconnected.");
  EXPECT_EQ(lastLine().colour, serverLine);
  EXPECT_EQ(frmMain->lbUserName[2].Caption.get(), "");
  EXPECT_EQ(frmMain->lblKills[2].Caption.get(), "");
  for (const Pixel pixel : frmMain->picCaps[2].pixels()) ASSERT_EQ(pixel & 0xFFFFFF, 0U);
}

// Records how often a picture box is presented, and the colour of its first pixel each time.
class PresentWatch : public Peer {
 public:
  PresentWatch(const PictureBox& box, std::vector<Pixel>& shown) : box_(box), shown_(shown) {}
  void changed(PropertyId) override {}
  void present() override { shown_.push_back(box_.pixels().front() & 0xFFFFFF); }

 private:
  const PictureBox& box_;
  std::vector<Pixel>& shown_;
};

TEST_F(Session, LeaversCaptureStripIsClearedAtOnce) {
  login();
  join(9, 2, "Bob");
  PictureBox& captures = frmMain->picCaps[2];
  captures.ForeColor = RGB(255, 0, 0);
  captures.DrawWidth = 5;
  captures.Line(0, 0, 900, 0);
  std::vector<Pixel> shown;
  captures.peer = std::make_unique<PresentWatch>(captures, shown);
  serverSends(wire::msgPlayerLeft, {"9"});
  captures.peer.reset();
  EXPECT_EQ(shown, std::vector<Pixel>{0});
}

TEST_F(Session, LeavingPlayerIsAnnouncedByName) {
  login();
  join(9, 2, "Bob");
  join(10, 2, "Cat");
  join(11, 3, "Dan");
  ASSERT_EQ(frmMain->lbUserName[2].Caption.get(), "Cat") << "two players of one colour share a label";
  serverSends(wire::msgPlayerLeft, {"9"});
  EXPECT_EQ(lastLine().text, "Bob has disconnected.");
  EXPECT_EQ(frmMain->lbUserName[2].Caption.get(), "");
  serverSends(wire::msgPlayerLeft, {"11"});
  EXPECT_EQ(lastLine().text, "Dan has disconnected.");
}

TEST_F(Session, Q074AnUnknownLeaverIsTakenForTheFirstOpponent) {
  login();
  join(9, 2, "Bob");
  join(10, 3, "Cat");
  serverSends(wire::msgPlayerLeft, {"99"});
  EXPECT_FALSE(world.opponents[0].isConnected);
  EXPECT_TRUE(world.opponents[1].isConnected);
  EXPECT_EQ(lastLine().text, "Bob has disconnected.");
}

TEST_F(Session, LocalPlayersNodeCannotLeave) {
  login(0, 7);
  join(9, 2, "Bob");
  modMain::world.chatLines = {};
  frmMain->lblKills[0].Caption = "3";
  serverSends(wire::msgPlayerLeft, {"7"});
  EXPECT_TRUE(world.localPlayer.isConnected);
  EXPECT_TRUE(world.opponents[0].isConnected);
  EXPECT_EQ(lastLine().text, "");
  EXPECT_EQ(frmMain->lbUserName[0].Caption.get(), "Ann");
  EXPECT_EQ(frmMain->lblKills[0].Caption.get(), "3");
}

TEST_F(Session, SpawnRequestIsSentAndAnnounced) {
  login();
  frmMain->btnSpawn.Click();
  EXPECT_EQ(server().sent, "\x80\x98\x81");
  EXPECT_EQ(lastLine().text, "Requesting spawn permission from the server...");
  EXPECT_EQ(lastLine().colour, RGB(255, 255, 255));
  EXPECT_EQ(lastLine().size, 0) << "this line has no configurable font";
}

TEST_F(Session, Q070ASpawnRequestWithoutConnectionIsAnnouncedButNotSent) {
  frmMain->btnSpawn.Click();
  EXPECT_EQ(lastLine().text, "Requesting spawn permission from the server...");
  EXPECT_TRUE(server().sent.empty());
}

TEST_F(Session, TheEndOfARoundKillsEverybodyAndLightsTheButtons) {
  login();
  join(9, 2, "Bob");
  join(10, 3, "Cat");
  modMain::setButtonsState(false);
  serverSends(wire::msgRoundOver, {"Round over"});
  EXPECT_FALSE(world.localPlayer.alive);
  EXPECT_FALSE(world.opponents[0].alive);
  EXPECT_FALSE(world.opponents[1].alive);
  EXPECT_EQ(modMain::world.roundMessage, "Round over");
  EXPECT_EQ(lastLine().text, "Round over");
  EXPECT_EQ(lastLine().colour, serverLine);
  EXPECT_EQ(frmMain->btnSpawn.background(), frmGfx->imgBtnPlay[1].Picture.get());
  EXPECT_EQ(frmMain->btnShop.background(), frmGfx->imgBtnStore[1].Picture.get());
}

TEST_F(Session, DisconnectingShowsTheDialogAndTheTitle) {
  login(1, 7);
  for (const std::int16_t colour : std::to_array<std::int16_t>({0, 2, 3, 4, 5})) {
    join(static_cast<std::int16_t>(20 + colour), colour, "Bob");
  }
  netMan::disconnectFromServer();
  EXPECT_EQ(frmMain->sock.State(), sckClosed);
  EXPECT_TRUE(frmMain->mnuFileConnect.Enabled);
  EXPECT_FALSE(frmMain->mnuFileDisconnect.Enabled);
  EXPECT_FALSE(world.localPlayer.isConnected);
  EXPECT_FALSE(world.opponents[0].isConnected);
  EXPECT_EQ(frmMain->lbUserName[1].BackColor.get(), RGB(0, 0, 0));
  for (Label& name : frmMain->lbUserName) EXPECT_EQ(name.Caption.get(), "");
  EXPECT_TRUE(frmConnect.isVisible());
  EXPECT_TRUE(frmMain->lbcConnect.Visible);
  EXPECT_EQ(frmMain->canvas.MousePointer.get(), 0);
}

TEST_F(Session, ResettingTheWorldKeepsTheOpponentsNames) {
  login(1, 7);
  join(9, 2, "Bob");
  ASSERT_NE(frmMain->lbUserName[1].BackColor.get(), RGB(0, 0, 0));
  modMain::resetConnectionState();
  EXPECT_EQ(frmMain->lbUserName[1].Caption.get(), "");
  EXPECT_EQ(frmMain->lbUserName[1].BackColor.get(), RGB(0, 0, 0));
  EXPECT_EQ(frmMain->lbUserName[2].Caption.get(), "Bob");
}

TEST_F(Session, Q073OldOpponentsKeepTheirSlots) {
  login();
  join(9, 2, "Bob");
  netMan::disconnectFromServer();
  login();
  EXPECT_EQ(modMain::world.opponentCount, 1);
  EXPECT_EQ(join(9, 2, "Bob"), 1);
  EXPECT_EQ(modMain::world.opponentCount, 2);
  EXPECT_FALSE(world.opponents[0].isConnected);
  EXPECT_TRUE(world.opponents[1].isConnected);
}

TEST_F(Session, ADeniedLoginShowsTheReasonAndDisconnects) {
  connect();
  serverSends(wire::msgLoginDenied, {""});
  EXPECT_EQ(machine.messageBoxes, std::vector<std::string>{"Login denied: \n"});
  EXPECT_EQ(frmMain->sock.State(), sckClosed);
  EXPECT_TRUE(frmConnect.isVisible());
}

TEST_F(Session, ReconnectingWhileConnectedFirstClosesSilently) {
  login();
  join(9, 2, "Bob");
  modMain::world.chatLines = {};
  netMan::connectToServer("Ann", "127.0.0.1", 2010, "", redPlayer);
  EXPECT_EQ(server().closes, 1);
  EXPECT_EQ(server().connects.size(), 2U);
  EXPECT_EQ(lastLine().text, "");
  EXPECT_TRUE(world.opponents[0].isConnected);
  EXPECT_TRUE(machine.messageBoxes.empty());
}

TEST_F(Session, Q240AnOldOpponentAnswersForAReusedNode) {
  login();
  join(9, 2, "Bob");
  netMan::connectToServer("Ann", "127.0.0.1", 2010, "", redPlayer);
  server().acceptConnection();
  passEvents();
  serverSends(wire::msgLoginAccepted, {"0", "7", "50000", "50000"});
  EXPECT_EQ(join(9, 3, "Cat"), 1);
  ASSERT_TRUE(world.opponents[0].isConnected);
  serverSends(wire::msgPosition, {"9", "21000", "22000"});
  EXPECT_EQ(world.opponents[0].positionQueueCount(), 1) << "Bob from the old server glides";
  EXPECT_EQ(world.opponents[1].positionQueueCount(), 0);
  serverSends(wire::msgPlayerLeft, {"9"});
  EXPECT_EQ(lastLine().text, "Bob has disconnected.");
  EXPECT_TRUE(world.opponents[1].isConnected);
  serverSends(wire::msgPosition, {"9", "21000", "22000"});
  EXPECT_EQ(world.opponents[1].positionQueueCount(), 1) << "once the old one is gone, the newcomer is found";
}

TEST_F(Session, AFailedSocketCanConnectAgain) {
  netMan::connectToServer("Ann", "127.0.0.1", 2010, "", redPlayer);
  server().refuse();
  passEvents();
  EXPECT_EQ(frmMain->sock.State(), sckError);
  netMan::connectToServer("Ann", "127.0.0.1", 2010, "", redPlayer);
  EXPECT_EQ(server().connects.size(), 2U);
}

TEST_F(Session, Q069AFailedConnectionLeavesTheMenuAsItIs) {
  frmMain->Show();
  netMan::connectToServer("Ann", "127.0.0.1", 2010, "", redPlayer);
  server().refuse();
  passEvents();
  EXPECT_FALSE(frmMain->mnuFileConnect.Enabled);
  EXPECT_TRUE(frmMain->mnuFileDisconnect.Enabled);
  EXPECT_FALSE(frmConnect.isVisible());
  tick(1000);
  passEvents();
  EXPECT_EQ(frmMain->lblNetStatus.Caption.get(), "Error");
  frmMain->lbcConnect.Click();
  EXPECT_EQ(machine.modalForms.size(), 1U) << "the title still opens the dialog";
}

TEST_F(Session, ServerHangUpDisconnectsSilently) {
  login();
  modMain::world.chatLines = {};
  server().closeByServer();
  passEvents();
  EXPECT_FALSE(world.localPlayer.isConnected);
  EXPECT_TRUE(frmConnect.isVisible());
  EXPECT_EQ(frmMain->lblNetStatus.Caption.get(), "Closed");
  EXPECT_TRUE(machine.messageBoxes.empty());
  EXPECT_EQ(lastLine().text, "");
}

}  // namespace
}  // namespace kelvora
