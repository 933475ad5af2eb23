#include "frontend/frmConnect.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "generated/version.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

class ConnectDialog : public GameTest {
 protected:
  std::string stored(const std::string& key) {
    const auto found = machine.settings.find({"last login", key});
    return found == machine.settings.end() ? "(nothing)" : found->second;
  }
  void store(const std::string& key, const std::string& value) { machine.settings[{"last login", key}] = value; }
  /// Fills in the form and clicks Connect.
  void connectWith(const std::string& name, const std::string& address, const std::string& port) {
    frmConnect->txtPlayerName.Text = name;
    frmConnect->txtServerAddress.Text = address;
    frmConnect->txtServerPort.Text = port;
    frmConnect->cmdConnect.Click();
  }
  static std::string borders() {
    std::string text;
    for (const Shape& circle : frmConnect->shpUserColor) {
      text += std::to_string(circle.BorderStyle.get()) + "/" + std::to_string(circle.BorderWidth.get()) + " ";
    }
    return text;
  }
  /// Presses on the row of colours, in twips of the label that covers it.
  static void press(float x, float y) { frmConnect->lblShapeSelect.MouseDown(1, 0, x, y); }
};

TEST_F(ConnectDialog, ControlsHaveTheirPositionsAndTabOrder) {
  FrmConnect f;
  struct Row {
    const Control* control;
    float left, top, width, height;
    int tabIndex;
  };
  for (const Row& row : {
           Row{&f.Label1, 120, 180, 1455, 285, 7},
           Row{&f.txtPlayerName, 1740, 180, 2055, 285, 0},
           Row{&f.Label2, 120, 540, 1455, 285, 8},
           Row{&f.txtServerAddress, 1740, 540, 2055, 285, 1},
           Row{&f.Label3, 120, 900, 1455, 285, 9},
           Row{&f.txtServerPort, 1740, 900, 915, 285, 2},
           Row{&f.Label4, 120, 1260, 1455, 285, 10},
           Row{&f.txtServerPassword, 1740, 1260, 2055, 285, 3},
           Row{&f.Label5, 120, 1620, 1455, 285, 11},
           Row{&f.lblShapeSelect, 1740, 1620, 1935, 255, 12},
           Row{&f.cmdConnect, 480, 1980, 1455, 375, 4},
           Row{&f.cmdGetList, 2040, 1980, 1455, 375, 5},
           Row{&f.cmdCancel, 1260, 2460, 1455, 375, 6},
           Row{&f.shpUserColor[0], 1860, 1620, 195, 255, -1},
           Row{&f.shpUserColor[1], 2160, 1620, 195, 255, -1},
           Row{&f.shpUserColor[2], 2460, 1620, 195, 255, -1},
           Row{&f.shpUserColor[3], 2760, 1620, 195, 255, -1},
           Row{&f.shpUserColor[4], 3060, 1620, 195, 255, -1},
           Row{&f.shpUserColor[5], 3360, 1620, 195, 255, -1},
       }) {
    SCOPED_TRACE(row.tabIndex);
    EXPECT_EQ(row.control->container(), &f);
    EXPECT_EQ(row.control->Left.get(), row.left);
    EXPECT_EQ(row.control->Top.get(), row.top);
    EXPECT_EQ(row.control->Width.get(), row.width);
    EXPECT_EQ(row.control->Height.get(), row.height);
    EXPECT_EQ(row.control->TabIndex, row.tabIndex);
  }
}

TEST_F(ConnectDialog, TextsAreAsDesigned) {
  const FrmConnect f;
  EXPECT_EQ(f.Caption.get(), "Connect");
  EXPECT_EQ(f.Label1.Caption.get(), "Player Name:");
  EXPECT_EQ(f.Label2.Caption.get(), "Server Address:");
  EXPECT_EQ(f.Label3.Caption.get(), "Server Port:");
  EXPECT_EQ(f.Label4.Caption.get(), "Server Password");
  EXPECT_EQ(f.Label5.Caption.get(), "Preferred Color:");
  for (const Label* label : {&f.Label1, &f.Label2, &f.Label3, &f.Label4, &f.Label5}) {
    EXPECT_EQ(label->design.alignment, Alignment::Right);
  }
  EXPECT_EQ(f.txtPlayerName.Text.get(), "");
  EXPECT_EQ(f.txtServerAddress.Text.get(), "127.0.0.1");
  EXPECT_EQ(f.txtServerPort.Text.get(), "2010");
  EXPECT_EQ(f.txtServerPassword.Text.get(), "");
  EXPECT_EQ(f.lblShapeSelect.Caption.get(), "");
  EXPECT_TRUE(f.lblShapeSelect.design.transparent);
  EXPECT_EQ(f.lblShapeSelect.BorderStyle.get(), 1);
  EXPECT_EQ(f.cmdConnect.Caption.get(), "Connect");
  EXPECT_EQ(f.cmdGetList.Caption.get(), "Get List");
  EXPECT_EQ(f.cmdCancel.Caption.get(), "Cancel");
}

TEST_F(ConnectDialog, IsAFixedWindowInTheDialogsOwnColours) {
  const FrmConnect f;
  EXPECT_EQ(f.design.clientWidth, 3945);
  EXPECT_EQ(f.design.clientHeight, 2925);
  EXPECT_EQ(f.design.border, Form::Border::Fixed);
  EXPECT_TRUE(f.design.systemColours);
}

TEST_F(ConnectDialog, Q050EnterConnectsAndEscapeOpensTheFinder) {
  const FrmConnect f;
  EXPECT_EQ(f.cmdConnect.role, Button::Role::Default);
  EXPECT_EQ(f.cmdGetList.role, Button::Role::Cancel);
  EXPECT_EQ(f.cmdCancel.role, Button::Role::Plain);
}

TEST_F(ConnectDialog, Q050TheButtonThatEscapeClicksOpensTheFinder) {
  const Button* answer = nullptr;
  for (const Control* control : frmConnect->children()) {
    const auto* button = dynamic_cast<const Button*>(control);
    if (button && button->role == Button::Role::Cancel) answer = button;
  }
  ASSERT_EQ(answer, &frmConnect->cmdGetList);
  answer->Click();
  EXPECT_EQ(machine.modalForms, std::vector<std::string>{"Game Finder"});
  EXPECT_TRUE(frmConnect.isLoaded());
}

TEST_F(ConnectDialog, Q229ThePasswordIsStoredAsItIsTyped) {
  frmConnect->txtServerPassword.Text = "S3cret pass";
  connectWith("Ann", "arena.test", "3000");
  EXPECT_EQ(stored("server password"), "S3cret pass");
  EXPECT_EQ(frmConnect->txtServerPassword.Text.get(), "S3cret pass") << "and is restored like that";
}

TEST_F(ConnectDialog, Q230OnlyThePasswordCaptionHasNoColon) {
  std::vector<std::string> without;
  for (const Label* label :
       {&frmConnect->Label1, &frmConnect->Label2, &frmConnect->Label3, &frmConnect->Label4, &frmConnect->Label5}) {
    if (!label->Caption.get().ends_with(':')) without.push_back(label->Caption);
  }
  EXPECT_EQ(without, std::vector<std::string>{"Server Password"});
}

TEST_F(ConnectDialog, CirclesAreAsDesigned) {
  FrmConnect f;
  const Colour fills[] = {RGB(255, 0, 0),   RGB(255, 255, 0), RGB(0, 255, 0),
                          RGB(0, 255, 255), RGB(0, 0, 255),   RGB(255, 0, 255)};
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(f.shpUserColor[i].FillColor, fills[i]) << i;
    EXPECT_EQ(f.shpUserColor[i].BorderStyle.get(), i == 0 ? 1 : 3) << i;
    EXPECT_EQ(f.shpUserColor[i].BorderWidth.get(), i == 0 ? 3 : 1) << i;
  }
  EXPECT_EQ(f.colour, 0);
}

TEST_F(ConnectDialog, TheClickAreaLiesOverTheCircles) {
  const FrmConnect f;
  const auto& order = f.children();
  const auto at = [&order](const Control* control) { return std::find(order.begin(), order.end(), control); };
  FrmConnect& mutableForm = const_cast<FrmConnect&>(f);
  for (const Shape& circle : mutableForm.shpUserColor) EXPECT_LT(at(&circle), at(&f.lblShapeSelect));
}

TEST_F(ConnectDialog, EmptySettingsGiveTheDefaults) {
  EXPECT_EQ(frmConnect->txtPlayerName.Text.get(), "");
  EXPECT_EQ(frmConnect->txtServerAddress.Text.get(), "127.0.0.1");
  EXPECT_EQ(frmConnect->txtServerPort.Text.get(), "2010");
  EXPECT_EQ(frmConnect->txtServerPassword.Text.get(), "");
  EXPECT_EQ(frmConnect->colour, 0);
  EXPECT_EQ(borders(), "1/3 3/1 3/1 3/1 3/1 3/1 ");
}

TEST_F(ConnectDialog, LastLoginIsRestored) {
  store("player name", "Ann");
  store("server address", "arena");
  store("server port", "3000");
  store("server password", "secret");
  store("player color", "4");
  EXPECT_EQ(frmConnect->txtPlayerName.Text.get(), "Ann");
  EXPECT_EQ(frmConnect->txtServerAddress.Text.get(), "arena");
  EXPECT_EQ(frmConnect->txtServerPort.Text.get(), "3000");
  EXPECT_EQ(frmConnect->txtServerPassword.Text.get(), "secret");
  EXPECT_EQ(frmConnect->colour, 4);
  EXPECT_EQ(borders(), "3/1 3/1 3/1 3/1 1/3 3/1 ");
}

TEST_F(ConnectDialog, StoredColourWithoutACircleKeepsTheDesign) {
  for (const char* colour : {"9", "6", "-1"}) {
    store("player color", colour);
    EXPECT_EQ(frmConnect->colour, 0) << colour;
    EXPECT_EQ(borders(), "1/3 3/1 3/1 3/1 3/1 3/1 ");
    frmConnect.unload();
  }
}

TEST_F(ConnectDialog, NonNumericStoredColourIsAFault) {
  store("player color", "blue");
  EXPECT_THROW(*frmConnect, RuntimeFault);
}

TEST_F(ConnectDialog, OpensNearTheMainWindowsCorner) {
  frmMain->Left = 300;
  frmMain->Top = 150;
  EXPECT_EQ(frmConnect->Left.get(), 6735);
  EXPECT_EQ(frmConnect->Top.get(), 3810);
}

TEST_F(ConnectDialog, SelectingAColourMarksItsCircle) {
  frmConnect->selectColour(cyanPlayer);
  EXPECT_EQ(frmConnect->colour, 3);
  EXPECT_EQ(borders(), "3/1 3/1 3/1 1/3 3/1 3/1 ");
  frmConnect->selectColour(purplePlayer);
  EXPECT_EQ(borders(), "3/1 3/1 3/1 3/1 3/1 1/3 ");
}

TEST_F(ConnectDialog, APressOnACircleChoosesItsColour) {
  for (int i = 0; i < 6; ++i) {
    press(120.0F + 300.0F * static_cast<float>(i) + 100, 100);
    EXPECT_EQ(frmConnect->colour, i);
  }
}

TEST_F(ConnectDialog, EveryButtonChoosesAColour) {
  for (const int button : {1, 2, 4}) {
    frmConnect->lblShapeSelect.MouseDown(button, 0, 120.0F + 300.0F * static_cast<float>(button) + 100, 100);
    EXPECT_EQ(frmConnect->colour, button) << "circle " << button;
  }
}

TEST_F(ConnectDialog, CirclesIncludeBothTheirEdges) {
  // Circle 2 is 195 wide and starts at 2460, and the label begins at 1740.
  press(720, 0);
  EXPECT_EQ(frmConnect->colour, 2);
  frmConnect->colour = redPlayer;
  press(915, 255);
  EXPECT_EQ(frmConnect->colour, 2);
  frmConnect->colour = redPlayer;
  press(719, 100);
  EXPECT_EQ(frmConnect->colour, 0);
  press(916, 100);
  EXPECT_EQ(frmConnect->colour, 0);
  press(800, 256);
  EXPECT_EQ(frmConnect->colour, 0);
}

TEST_F(ConnectDialog, Q041APressLeavesTheBorderDottedInColourOne) {
  press(500, 100);  // circle 1, from 420 to 615
  EXPECT_EQ(frmConnect->colour, 1);
  EXPECT_EQ(borders(), "3/1 3/3 3/1 3/1 3/1 3/1 ");
  EXPECT_EQ(frmConnect->shpUserColor[1].BorderColor.get(), RGB(1, 0, 0));
  EXPECT_EQ(frmConnect->shpUserColor[0].BorderColor.get(), RGB(0, 0, 0));
}

TEST_F(ConnectDialog, Q051APressInAGapClearsAllMarksAndKeepsTheColour) {
  frmConnect->selectColour(greenPlayer);
  press(370, 100);  // between circles 0 and 1: 315 to 420
  EXPECT_EQ(frmConnect->colour, 2);
  EXPECT_EQ(borders(), "3/1 3/1 3/1 3/1 3/1 3/1 ");
}

TEST_F(ConnectDialog, ConnectPassesEverythingToTheSession) {
  frmConnect->txtServerPassword.Text = "secret";
  frmConnect->selectColour(cyanPlayer);
  connectWith("Ann", "arena.test", "3000");
  EXPECT_EQ(server().connects, (std::vector<std::pair<std::string, int>>{{"arena.test", 3000}}));
  EXPECT_EQ(netMan::playerName, "Ann");
  EXPECT_EQ(netMan::serverPassword, "secret");
  EXPECT_EQ(netMan::preferredColour, cyanPlayer);
  EXPECT_FALSE(frmConnect.isLoaded());
  EXPECT_TRUE(machine.messageBoxes.empty());
}

TEST_F(ConnectDialog, PendingEventsRunOnceBeforeTheDialogCloses) {
  frmConnect->Show();
  bool stoodThen = false;
  machine.post([&stoodThen] { stoodThen = frmConnect.isVisible(); });
  connectWith("Ann", "arena.test", "3000");
  EXPECT_TRUE(stoodThen);
  EXPECT_EQ(machine.doEventsCount, 1);
  EXPECT_FALSE(frmConnect.isLoaded());
}

TEST_F(ConnectDialog, Q231PortsFrom32767UpAreRefusedLikeInvalidOnes) {
  for (const char* port : {"0", "-5", "32767", "40000", "65535", "abc", "", "99999", "1e400", "-1e400"}) {
    machine.messageBoxes.clear();
    connectWith("Ann", "arena.test", port);
    EXPECT_EQ(machine.messageBoxes, std::vector<std::string>{"Invalid server port number"}) << port;
    EXPECT_TRUE(server().connects.empty()) << port;
    EXPECT_TRUE(frmConnect.isLoaded()) << "the dialog stays";
  }
}

TEST_F(ConnectDialog, Q232AFractionalPortIsRoundedToEvenAfterTheCheck) {
  struct Row {
    const char* text;
    int port;
  };
  for (const Row& row : {Row{"1", 1}, Row{"32766", 32766}, Row{"32766.6", 32767}, Row{"2010.5", 2010},
                         Row{"2011.5", 2012}, Row{"80x", 80}, Row{"0.3", 0}}) {
    connectWith("Ann", "arena.test", row.text);
    ASSERT_FALSE(server().connects.empty());
    EXPECT_EQ(server().connects.back().second, row.port) << row.text;
  }
  EXPECT_TRUE(machine.messageBoxes.empty());
}

TEST_F(ConnectDialog, ANameIsRequired) {
  connectWith("", "arena.test", "3000");
  EXPECT_EQ(machine.messageBoxes, std::vector<std::string>{"Please enter a name for yourself"});
  EXPECT_TRUE(server().connects.empty());
}

TEST_F(ConnectDialog, AnAddressIsRequired) {
  connectWith("Ann", "", "3000");
  EXPECT_EQ(machine.messageBoxes, std::vector<std::string>{"Please enter the address of the server"});
  EXPECT_TRUE(server().connects.empty());
}

TEST_F(ConnectDialog, OnlyTheFirstErrorIsReported) {
  connectWith("", "", "abc");
  EXPECT_EQ(machine.messageBoxes, std::vector<std::string>{"Invalid server port number"});
}

TEST_F(ConnectDialog, BlankCountsAsAName) {
  connectWith(" ", " ", "3000");
  EXPECT_TRUE(machine.messageBoxes.empty());
  EXPECT_EQ(netMan::playerName, " ");
}

TEST_F(ConnectDialog, ASeparatorInTheNameBreaksTheLoginIntoMoreFields) {
  connectWith("An\x82n", "arena.test", "3000");
  server().acceptConnection();
  passEvents();
  EXPECT_EQ(sentFrames(), (std::vector<WireMessage>{{wire::msgLogin, {"An", "n", "", "0", KELVORA_VERSION}}}));
  EXPECT_EQ(stored("player name"), "An\x82n");
}

TEST_F(ConnectDialog, Q042ARefusedAttemptStillSavesItsValues) {
  frmConnect->txtServerPassword.Text = "secret";
  frmConnect->selectColour(purplePlayer);
  connectWith("", "arena.test", "abc");
  EXPECT_EQ(stored("player name"), "");
  EXPECT_EQ(stored("server address"), "arena.test");
  EXPECT_EQ(stored("server port"), "abc");
  EXPECT_EQ(stored("server password"), "secret");
  EXPECT_EQ(stored("player color"), "5");
  frmConnect.unload();
  EXPECT_EQ(frmConnect->txtServerPort.Text.get(), "abc");
  EXPECT_EQ(frmConnect->colour, 5);
}

TEST_F(ConnectDialog, CancelSavesNothing) {
  store("player name", "Ann");
  frmConnect->Show();
  frmConnect->txtPlayerName.Text = "Bob";
  machine.journal.clear();
  frmConnect->cmdCancel.Click();
  EXPECT_FALSE(frmConnect.isLoaded());
  EXPECT_EQ(machine.journal, std::vector<std::string>{"hide Connect"});
  EXPECT_EQ(frmConnect->txtPlayerName.Text.get(), "Ann");
}

TEST_F(ConnectDialog, ClosingTheWindowUnloadsIt) {
  frmConnect->Show();
  frmConnect->closedByUser();
  EXPECT_FALSE(frmConnect.isLoaded());
}

TEST_F(ConnectDialog, ReloadingResetsTheColour) {
  frmConnect->selectColour(bluePlayer);
  frmConnect.unload();
  EXPECT_EQ(frmConnect->colour, 0) << "nothing was saved";
}

}  // namespace
}  // namespace kelvora
