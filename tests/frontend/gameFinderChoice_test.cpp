#include <gtest/gtest.h>

#include "base/fault.h"
#include "frontend/frmConnect.h"
#include "tests/frontend/gameFinderTest.h"

namespace kelvora {
namespace {

class GameFinderChoice : public GameFinder {
 protected:
  GameFinderChoice() {
    frmConnect->Show();
    frmConnect->txtPlayerName.Text = "Ann";
    frmConnect->txtServerPassword.Text = "secret";
    frmConnect->selectColour(bluePlayer);
  }
};

TEST_F(GameFinderChoice, Q272AProtectedServerGetsTheDialogsPassword) {
  list("[192.0.2.7|2010|0|friendly game|3|8][arena.test|3000|1||0|6]-END-");
  frmGameFind->Show();
  frmGameFind->grid.adoptCell(2, 4);
  frmGameFind->grid.DblClick();
  EXPECT_EQ(server().connects, (std::vector<std::pair<std::string, int>>{{"arena.test", 3000}}));
  EXPECT_EQ(netMan::playerName, "Ann");
  EXPECT_EQ(netMan::serverPassword, "secret");
  EXPECT_EQ(netMan::preferredColour, bluePlayer);
  EXPECT_FALSE(frmGameFind.isLoaded());
  EXPECT_FALSE(frmConnect.isLoaded());
  EXPECT_TRUE(machine.messageBoxes.empty()) << "nothing is asked";
  EXPECT_EQ(machine.modalForms, std::vector<std::string>{});
}

TEST_F(GameFinderChoice, Q272ThePlayerIsNotAskedForAMissingPassword) {
  frmConnect->txtServerPassword.Text = "";
  list("[arena.test|3000|1||0|6]-END-");
  frmGameFind->grid.DblClick();
  EXPECT_EQ(server().connects, (std::vector<std::pair<std::string, int>>{{"arena.test", 3000}}));
  EXPECT_EQ(netMan::serverPassword, "");
  EXPECT_TRUE(machine.messageBoxes.empty());
}

TEST_F(GameFinderChoice, FirstServerIsSelectedUntilThePlayerSelectsAnother) {
  list("[192.0.2.7|2010|0|friendly game|3|8][arena.test|3000|1||0|6]-END-");
  frmGameFind->grid.DblClick();
  EXPECT_EQ(server().connects, (std::vector<std::pair<std::string, int>>{{"192.0.2.7", 2010}}));
}

TEST_F(GameFinderChoice, PendingEventsRunOnceBeforeItConnects) {
  list("[192.0.2.7|2010|0|n|3|8]-END-");
  std::string address;
  std::size_t connects = 99;
  machine.post([&] {
    address = frmConnect->txtServerAddress.Text;
    connects = server().connects.size();
  });
  frmGameFind->grid.DblClick();
  EXPECT_EQ(address, "192.0.2.7");
  EXPECT_EQ(connects, 0U);
}

TEST_F(GameFinderChoice, Q166ADoubleClickOnAnEmptyListReadsTheHeading) {
  list("-END-");
  frmGameFind->Show();
  frmGameFind->grid.DblClick();
  EXPECT_EQ(machine.messageBoxes, std::vector<std::string>{"Invalid server port number"});
  EXPECT_TRUE(server().connects.empty());
  EXPECT_EQ(frmConnect->txtServerAddress.Text.get(), "IP Addr");
  EXPECT_EQ(frmConnect->txtServerPort.Text.get(), "Port");
  EXPECT_TRUE(frmConnect.isVisible());
}

TEST_F(GameFinderChoice, Q167TheFinderClosesEvenIfTheConnectionIsRefused) {
  list("-END-");
  frmGameFind->Show();
  frmGameFind->grid.DblClick();
  EXPECT_FALSE(frmGameFind.isLoaded());
  // The same with a server in the list but without a player name.
  list("[192.0.2.7|2010|0|n|3|8]-END-");
  frmConnect->txtPlayerName.Text = "";
  frmGameFind->grid.DblClick();
  EXPECT_EQ(machine.messageBoxes.back(), "Please enter a name for yourself");
  EXPECT_FALSE(frmGameFind.isLoaded());
}

TEST_F(GameFinderChoice, DoubleClickBeforeTheListArrivesIsRefused) {
  frmGameFind->grid.DblClick();
  EXPECT_EQ(machine.messageBoxes, std::vector<std::string>{"Invalid server port number"});
  EXPECT_FALSE(frmGameFind.isLoaded());
}

}  // namespace
}  // namespace kelvora
