#include <gtest/gtest.h>

#include "frontend/frmConnect.h"
#include "generated/version.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

class ConnectionState : public GameTest {
 protected:
  std::string shownState() { return frmMain->lblNetStatus.Caption; }
};

TEST_F(ConnectionState, EveryStateHasItsNameAndColour) {
  struct Row {
    int state;
    const char* name;
    Colour colour;
  };
  constexpr Colour green = RGB(128, 255, 128);
  constexpr Colour orange = RGB(255, 192, 128);
  constexpr Colour red = RGB(255, 128, 128);
  constexpr Colour grey = RGB(128, 128, 128);
  for (const Row& row :
       {Row{0, "Closed", red}, Row{1, "Open", grey}, Row{2, "Listening", grey}, Row{3, "Connection pending", grey},
        Row{4, "Resolving", orange}, Row{5, "Resolved", orange}, Row{6, "Connecting", orange},
        Row{7, "Connected", green}, Row{8, "Closing", red}, Row{9, "Error", grey}}) {
    server().setState(static_cast<SocketState>(row.state));
    frmMain->showConnectionState();
    EXPECT_EQ(shownState(), row.name);
    EXPECT_EQ(frmMain->lblNetStatus.BackColor.get(), row.colour) << row.name;
  }
}

TEST_F(ConnectionState, Q235IsCalledDisconnectedUntilTheFirstUpdate) {
  EXPECT_EQ(shownState(), "Disconnected");
  EXPECT_EQ(frmMain->sock.State(), sckClosed);
  frmMain->showConnectionState();
  EXPECT_EQ(shownState(), "Closed");
}

TEST_F(ConnectionState, IsRefreshedEverySecond) {
  frmMain->Show();
  server().setState(sckConnecting);
  tick(999);
  passEvents();
  EXPECT_EQ(shownState(), "Disconnected");
  tick(1);
  passEvents();
  EXPECT_EQ(shownState(), "Connecting");
  server().setState(sckError);
  tick(500);
  passEvents();
  EXPECT_EQ(shownState(), "Connecting");
  tick(500);
  passEvents();
  EXPECT_EQ(shownState(), "Error");
}

TEST_F(ConnectionState, TimerRestsOnlyInStatesThatDoNotChangeByThemselves) {
  for (int state = sckClosed; state <= sckError; ++state) {
    server().setState(static_cast<SocketState>(state));
    EXPECT_EQ(frmMain->tmrCheckNetStatus.mayRest(), state == sckClosed || state == sckError) << state;
  }
}

TEST_F(ConnectionState, ConnectingWakesTheTimer) {
  frmMain->Show();
  frmMain->tmrCheckNetStatus.isResting = true;
  frmMain->sock.Connect();
  EXPECT_FALSE(frmMain->tmrCheckNetStatus.isResting);
}

TEST_F(ConnectionState, DisconnectingAfterAFailureWakesTheTimer) {
  frmMain->Show();
  netMan::connectToServer("Ann", "127.0.0.1", 2010, "", redPlayer);
  server().refuse();
  passEvents();
  tick(1000);
  passEvents();
  ASSERT_EQ(shownState(), "Error");
  frmMain->tmrCheckNetStatus.isResting = true;
  frmMain->mnuFileDisconnect.Click();
  EXPECT_FALSE(frmMain->tmrCheckNetStatus.isResting) << "otherwise the label would keep saying Error";
  tick(1000);
  passEvents();
  EXPECT_EQ(shownState(), "Closed");
}

TEST_F(ConnectionState, IsRefreshedOnConnectBeforeTheLoginIsSent) {
  netMan::connectToServer("Ann", "127.0.0.1", 2010, "", greenPlayer);
  server().acceptConnection();
  passEvents();
  EXPECT_EQ(shownState(), "Connected");
  EXPECT_EQ(server().sent,
            "\x80\x87"
            "Ann\x82\x82"
            "2\x82" KELVORA_VERSION "\x81");
}

TEST_F(ConnectionState, IsRefreshedWhenTheServerHangsUp) {
  login();
  server().closeByServer();
  passEvents();
  EXPECT_EQ(shownState(), "Closed") << "after the socket has been closed on this side, too";
  EXPECT_FALSE(modMain::world.localPlayer.isConnected);
  EXPECT_TRUE(frmConnect.isVisible());
  EXPECT_TRUE(machine.messageBoxes.empty());
}

TEST_F(ConnectionState, ARefusedConnectionRunsNoHandler) {
  frmMain->Show();
  netMan::connectToServer("Ann", "127.0.0.1", 2010, "", redPlayer);
  server().refuse();
  passEvents();
  EXPECT_EQ(frmMain->sock.State(), sckError);
  EXPECT_FALSE(frmMain->mnuFileConnect.Enabled.get());
  EXPECT_TRUE(frmMain->mnuFileDisconnect.Enabled.get());
  tick(1000);
  passEvents();
  EXPECT_EQ(shownState(), "Error");
}

TEST_F(ConnectionState, TheMenuOpensTheDialogModally) {
  frmMain->Show();
  frmMain->mnuFileConnect.Click();
  EXPECT_EQ(machine.modalForms, std::vector<std::string>{"Connect"});
}

TEST_F(ConnectionState, TitleOpensTheDialogLikeTheMenuEvenAfterAFailure) {
  frmMain->Show();
  netMan::connectToServer("Ann", "127.0.0.1", 2010, "", redPlayer);
  server().refuse();
  passEvents();
  frmMain->lbcConnect.Click();
  EXPECT_EQ(machine.modalForms, std::vector<std::string>{"Connect"});
}

TEST_F(ConnectionState, OpenModelessDialogGetsTheFocusInstead) {
  frmMain->Show();
  frmConnect->Show();
  frmMain->mnuFileConnect.Click();
  EXPECT_TRUE(machine.modalForms.empty());
  EXPECT_EQ(machine.focus(), &*frmConnect);
  EXPECT_TRUE(frmConnect.isVisible());
}

TEST_F(ConnectionState, DisconnectInTheMenuClosesTheConnection) {
  login();
  EXPECT_TRUE(frmMain->mnuFileDisconnect.Enabled.get());
  frmMain->mnuFileDisconnect.Click();
  EXPECT_EQ(frmMain->sock.State(), sckClosed);
  EXPECT_FALSE(modMain::world.localPlayer.isConnected);
  EXPECT_TRUE(frmMain->mnuFileConnect.Enabled.get());
  EXPECT_FALSE(frmMain->mnuFileDisconnect.Enabled.get());
  EXPECT_TRUE(frmConnect.isVisible());
  EXPECT_TRUE(machine.modalForms.empty());
}

TEST_F(ConnectionState, PortionsOfOneReadAreJoined) {
  login();
  server().deliver(
      "\x80\xA2"
      "Welcome to the arena\x81",
      5);  // a server's text in six portions, in one event
  passEvents();
  EXPECT_EQ(modMain::world.chatLines[0].text, "Welcome to the arena");
}

TEST_F(ConnectionState, TwoReadsAreHandledSeparately) {
  login();
  server().deliverInReads(
      {"\x80\xA2"
       "Welc",
       "ome\x81"});
  passEvents();
  EXPECT_EQ(modMain::world.chatLines[0].text.find("Welcome"), std::string::npos);
}

TEST_F(ConnectionState, MessagesDuringABoxAreHandledOnce) {
  login();
  machine.onMessageBox = [this](const std::string&) {
    if (machine.messageBoxes.size() == 1) serverSends(wire::msgServerText, {"in between"});
  };
  serverSends(wire::msgSpawnDenied, {""});
  EXPECT_EQ(machine.messageBoxes, std::vector<std::string>{"Respawn request denied from server"});
  EXPECT_EQ(modMain::world.chatLines[0].text, "in between");
  EXPECT_NE(modMain::world.chatLines[1].text, "in between");
}

}  // namespace
}  // namespace kelvora
