#include <gtest/gtest.h>

#include <algorithm>

#include "audio/soundMan.h"
#include "base/fault.h"
#include "frontend/fontMan.h"
#include "store/frmPowerups.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

using modMain::world;

const std::string noRoom =
    "Cannot purchase powerup, you have no where to store it.  Check your capacity, consider selling.";

/// The local player has node 7 and 10 credits. Effects are on, and their records are cleared before each test.
class Store : public GameTest {
 protected:
  Store() {
    login(0, 7);
    soundMan::initAudio();
    forgetSounds();
    modMain::world.chatLines = {};
  }

  static void stock(std::int16_t count, std::size_t item = shieldSlot) {
    world.localPlayer.powerups[item].count = count;
  }
  static const std::string& lastLine() { return modMain::world.chatLines[0].text; }
  static std::string status() { return frmPowerups->lblWinners.Caption; }
  static std::string shownFunds() { return frmPowerups->lblFunds.Caption; }
  static std::string shownCapacity() { return frmPowerups->lblCapacity.Caption; }
  static std::string shownStock(int item) { return frmPowerups->lblCurrentStock[item].Caption; }
  static std::string mainCredits() { return frmMain->lblCredits.Caption; }
  auto errorsPlayed() const {
    return std::count(machine.soundCommands.begin(), machine.soundCommands.end(), "error.wav play");
  }
  bool isErrorPlayed() const { return errorsPlayed() == 1; }
  void forgetSounds() { machine.soundCommands.clear(); }
};

TEST_F(Store, ANewPlayerHasTenCreditsAndRoomForTen) {
  EXPECT_EQ(world.localPlayer.funds(), 10);
  EXPECT_EQ(world.localPlayer.powerSlotLimit, 10);
  EXPECT_EQ(mainCredits(), "10");
}

TEST_F(Store, ButtonOpensItOverTheRunningGame) {
  stock(3, turboSlot);
  serverSends(148, {"7", "33"});
  modMain::world.roundMessage = "Bob wins";
  frmMain->btnShop.Click();
  ASSERT_TRUE(frmPowerups.isVisible());
  EXPECT_EQ(frmPowerups->modality(), Form::Modality::Modeless);
  EXPECT_EQ(status(), "Bob wins");
  EXPECT_EQ(shownFunds(), "33");
  for (int item = 0; item < 6; ++item) EXPECT_EQ(shownStock(item), item == 1 ? "3" : "0");
  EXPECT_TRUE(world.localPlayer.alive) << "it can be opened in mid-game";

  world.localPlayer.velocity = {100, 0};
  const Vector before = world.localPlayer.position;
  world.localPlayer.breaksOn = false;
  modMain::runFrame();
  EXPECT_NE(world.localPlayer.position, before);
  EXPECT_TRUE(frmPowerups.isVisible());
}

TEST_F(Store, TheConsoleOpensIt) {
  netMan::sendChat("~ShowStore");
  EXPECT_TRUE(frmPowerups.isVisible());
  EXPECT_TRUE(server().sent.empty());
}

TEST_F(Store, ItPlaysTheShoppingMusic) {
  machine.tracks.clear();
  modMain::openStore();
  EXPECT_EQ(machine.tracks, std::vector<std::string>{machine.path + "/sounds/music_shopping.mp3"});
}

TEST_F(Store, ReopeningRestartsTheTrack) {
  modMain::openStore();
  machine.tracks.clear();
  frmMain->btnShop.Click();
  ASSERT_TRUE(frmPowerups.isVisible());
  EXPECT_EQ(machine.tracks, std::vector<std::string>{machine.path + "/sounds/music_shopping.mp3"});
}

TEST_F(Store, Q270ClosingItDoesNotStopTheShoppingMusic) {
  modMain::openStore();
  const std::size_t started = machine.tracks.size();
  frmPowerups->cmdDone.Click();
  EXPECT_FALSE(frmPowerups.isLoaded());
  EXPECT_EQ(machine.playState, psPlaying);
  EXPECT_EQ(machine.tracks.size(), started) << "nothing takes its place";
  // The same when a new life closes it.
  modMain::openStore();
  serverSends(154, {"7"});
  EXPECT_FALSE(frmPowerups.isLoaded());
  EXPECT_EQ(machine.playState, psPlaying);
  EXPECT_EQ(machine.tracks.back(), machine.path + "/sounds/music_shopping.mp3");
}

TEST_F(Store, ReopeningRefreshesIt) {
  modMain::openStore();
  stock(2);
  modMain::world.roundMessage = "again";
  modMain::openStore();
  EXPECT_EQ(shownStock(0), "2");
  EXPECT_EQ(status(), "again");
}

TEST_F(Store, Q200BeforeTheFirstLoginItKeepsItsDesignTexts) {
  world.localPlayer = {};
  world.localPlayer.funds(50);
  stock(4);
  frmMain->sock.Close();
  modMain::openStore();
  EXPECT_TRUE(frmPowerups.isVisible()) << "no server is needed";
  EXPECT_EQ(shownFunds(), "0");
  EXPECT_EQ(shownStock(0), "0");
}

TEST_F(Store, OpponentFillsInNothing) {
  modMain::openStore();
  clsPlayer& bob = modMain::playerAt(join(8, 1, "Bob"));
  bob.funds(77);
  bob.populatePowerupsForm();
  EXPECT_EQ(shownFunds(), "10");
}

TEST_F(Store, Q201TheFirstOpeningShowsADesignTextForTheCapacity) {
  stock(3);
  modMain::openStore();
  EXPECT_EQ(shownCapacity(), "0 / 25");
  serverSends(151, {"1", "1", "5"});
  EXPECT_EQ(shownCapacity(), "4 / 10");
}

TEST_F(Store, PicturesAndButtonsRequestAPurchase) {
  modMain::openStore();
  for (int item = 0; item < 6; ++item) {
    forgetSent();
    const std::vector<WireMessage> expected{{149, {std::to_string(item)}}};
    frmPowerups->cmdBuy[item].Click();
    EXPECT_EQ(sentFrames(), expected);
    forgetSent();
    frmPowerups->picPowerup[item].Click();
    EXPECT_EQ(sentFrames(), expected);
  }
  EXPECT_EQ(status(), "") << "the server has not answered yet";
  EXPECT_EQ(world.localPlayer.totalPowerups(), 0);
}

TEST_F(Store, TenItemsLeaveNoRoom) {
  modMain::openStore();
  stock(6);
  stock(4, laserSlot);
  frmPowerups->cmdBuy[1].Click();
  EXPECT_TRUE(server().sent.empty());
  EXPECT_EQ(status(), noRoom);
  EXPECT_EQ(shownCapacity(), "10 / 10");
  EXPECT_EQ(shownStock(4), "4");
  EXPECT_TRUE(isErrorPlayed());
}

TEST_F(Store, Q315ItsTextsMisspell) {
  const auto says = [](const std::string& text, const char* words) { return text.find(words) != std::string::npos; };
  modMain::openStore();
  EXPECT_TRUE(says(frmPowerups->lblItemDescription[shieldSlot].Caption,
                   "lasers, and EMP's for 15 seconds.  Warning: EMP's will"));
  EXPECT_TRUE(says(frmPowerups->lblItemDescription[laserSlot].Caption, "anything in it's path"));
  stock(10);
  frmPowerups->cmdBuy[shieldSlot].Click();
  EXPECT_TRUE(says(status(), "you have no where to store it"));
}

TEST_F(Store, NineItemsLeaveRoomForOne) {
  modMain::openStore();
  stock(9);
  frmPowerups->cmdBuy[1].Click();
  EXPECT_EQ(sentFrames(), (std::vector<WireMessage>{{149, {"1"}}}));
  EXPECT_FALSE(isErrorPlayed());
}

TEST_F(Store, Q202UnaffordableItemsCanBeRequested) {
  modMain::openStore();
  ASSERT_EQ(frmPowerups->lblItemCost[5].BackColor.get(), RGB(128, 95, 95));
  frmPowerups->cmdBuy[5].Click();
  EXPECT_EQ(sentFrames(), (std::vector<WireMessage>{{149, {"5"}}}));
}

TEST_F(Store, Q203ItemsOutOfStockCanBeOfferedForSale) {
  modMain::openStore();
  for (int item = 0; item < 6; ++item) {
    forgetSent();
    frmPowerups->cmdSell[item].Click();
    EXPECT_EQ(sentFrames(), (std::vector<WireMessage>{{158, {std::to_string(item)}}}));
  }
}

TEST_F(Store, APurchaseIsShownEverywhere) {
  modMain::openStore();
  serverSends(151, {"0", "2", "24.5"});
  EXPECT_EQ(world.localPlayer.powerups[shieldSlot].count, 2);
  EXPECT_EQ(world.localPlayer.funds(), 24) << "ties go to the even number";
  EXPECT_EQ(mainCredits(), "24");
  EXPECT_EQ(shownFunds(), "24");
  EXPECT_EQ(shownStock(0), "2");
  EXPECT_EQ(shownCapacity(), "2 / 10");
  EXPECT_EQ(status(), "Item purchased");
  EXPECT_EQ(lastLine(), "Item purchased");
  EXPECT_EQ(modMain::world.chatLines[0].colour, fontMan::getFontColour(3));
  EXPECT_EQ(frmPowerups->lblItemCost[0].BackColor.get(), RGB(255, 255, 255));
  EXPECT_EQ(frmPowerups->lblItemCost[2].BackColor.get(), RGB(128, 95, 95));
}

TEST_F(Store, APurchaseArrivesWithTheWindowClosed) {
  serverSends(151, {"3", "1", "4"});
  EXPECT_EQ(world.localPlayer.powerups[extendedTailSlot].count, 1);
  EXPECT_EQ(mainCredits(), "4");
  EXPECT_EQ(lastLine(), "Item purchased");
  EXPECT_FALSE(frmPowerups.isLoaded());
}

TEST_F(Store, PurchaseOfAnUnknownItemStopsAfterTheBalance) {
  modMain::openStore();
  serverSends(151, {"6", "1", "4"});
  EXPECT_EQ(mainCredits(), "4");
  EXPECT_EQ(lastLine(), "");
  EXPECT_EQ(status(), "");
  EXPECT_THROW(world.localPlayer.purchaseAccepted(PowerupSlot{-1}, 1, 5), RuntimeFault);
  EXPECT_EQ(world.localPlayer.funds(), 5);
}

TEST_F(Store, Q204ASaleIsNotRoundedAndTheMainWindowKeepsTheOldBalance) {
  modMain::openStore();
  stock(3);
  serverSends(160, {"0", "2", "27.75"});
  EXPECT_EQ(world.localPlayer.powerups[shieldSlot].count, 2);
  EXPECT_EQ(world.localPlayer.funds(), 27.75);
  EXPECT_EQ(shownFunds(), "27") << "the floor";
  EXPECT_EQ(mainCredits(), "10");
  EXPECT_EQ(status(), "Item sold");
  EXPECT_EQ(shownStock(0), "2");
  EXPECT_EQ(shownCapacity(), "2 / 10");
  EXPECT_EQ(lastLine(), "") << "no line, unlike a purchase";

  serverSends(148, {"7", "27.75"});
  EXPECT_EQ(mainCredits(), "28");
}

TEST_F(Store, Q275AFractionOfACreditIsOnlyShownByReopening) {
  modMain::openStore();
  serverSends(160, {"0", "2", "27.75"});
  EXPECT_EQ(shownFunds(), "27");
  modMain::openStore();
  EXPECT_EQ(shownFunds(), "27.75");
  world.localPlayer.showStoreStatus("text");
  EXPECT_EQ(shownFunds(), "27");
}

TEST_F(Store, Q205TheSaleOfAnUnknownItemIsStillConfirmed) {
  modMain::openStore();
  serverSends(160, {"6", "2", "99"});
  EXPECT_EQ(status(), "Item sold");
  EXPECT_EQ(world.localPlayer.funds(), 10);
  serverSends(160, {"-1", "2", "99"});
  EXPECT_EQ(world.localPlayer.funds(), 10);
  EXPECT_EQ(world.localPlayer.totalPowerups(), 0);
}

TEST_F(Store, ASaleArrivesWithTheWindowClosed) {
  stock(3);
  serverSends(160, {"0", "2", "30"});
  EXPECT_EQ(world.localPlayer.powerups[shieldSlot].count, 2);
  EXPECT_EQ(world.localPlayer.funds(), 30);
  EXPECT_FALSE(frmPowerups.isLoaded());
}

TEST_F(Store, RefusalIsShownWithASound) {
  for (const std::int16_t id : {std::int16_t{150}, std::int16_t{159}}) {
    modMain::openStore();
    forgetSounds();
    serverSends(id, {"You are too poor for the number " + std::to_string(id)});
    EXPECT_EQ(status(), "You are too poor for the number " + std::to_string(id));
    EXPECT_TRUE(isErrorPlayed());
    EXPECT_EQ(lastLine(), "");
  }
}

TEST_F(Store, Q274ARefusalWithTheWindowClosedIsSilent) {
  serverSends(150, {"no"});
  serverSends(159, {"no"});
  EXPECT_TRUE(machine.soundCommands.empty());
  EXPECT_EQ(lastLine(), "");
  EXPECT_FALSE(frmPowerups.isLoaded());
}

TEST_F(Store, RefusalWithoutFieldsOnlyMakesASound) {
  modMain::openStore();
  serverSends(150, {"first"});
  forgetSounds();
  serverSends(std::string("\x80\x96no\x81"));
  ASSERT_EQ(status(), "no");
  // An empty frame has no fields and reuses the previous id of the same read.
  serverSends(std::string("\x80\x96more\x81\x80\x81"));
  EXPECT_EQ(status(), "more");
  EXPECT_EQ(errorsPlayed(), 3);
}

TEST_F(Store, StatusWithTheWindowClosedDoesNotOpenIt) {
  world.localPlayer.showStoreStatus("text");
  EXPECT_FALSE(frmPowerups.isLoaded());
}

TEST_F(Store, StatusUpdatesTheWholeWindow) {
  modMain::openStore();
  for (std::size_t i = 0; i < 6; ++i) stock(static_cast<std::int16_t>(i), i);
  serverSends(160, {"0", "0", "-.5"});
  for (int i = 0; i < 6; ++i) EXPECT_EQ(shownStock(i), std::to_string(i));
  EXPECT_EQ(shownFunds(), "-1");
  EXPECT_EQ(shownCapacity(), "15 / 10");
  EXPECT_EQ(frmPowerups->lblItemCost[1].BackColor.get(), RGB(128, 95, 95));
}

TEST_F(Store, ARespawnClosesIt) {
  join(8, 1, "Bob");
  frmMain->btnShop.Click();
  serverSends(154, {"8"});
  EXPECT_TRUE(frmPowerups.isVisible()) << "another player's";
  serverSends(154, {"7"});
  EXPECT_FALSE(frmPowerups.isLoaded());
}

TEST_F(Store, Q206TheEndOfARoundIsMissed) {
  modMain::openStore();
  serverSends(142, {"Bob has won"});
  EXPECT_TRUE(world.localPlayer.alive);
  EXPECT_EQ(modMain::world.roundMessage, "");
  EXPECT_EQ(lastLine(), "");
  frmPowerups->cmdDone.Click();
  serverSends(142, {"Bob has won"});
  EXPECT_FALSE(world.localPlayer.alive);
  EXPECT_EQ(modMain::world.roundMessage, "Bob has won");
}

TEST_F(Store, FundsAreWholeNumbersRoundedToEven) {
  struct Row {
    const char* sent;
    double funds;
    const char* shown;
  };
  for (const Row& row :
       {Row{"2.5", 2, "2"}, Row{"3.5", 4, "4"}, Row{"-.4", 0, "0"}, Row{"123456789", 123456789.0, "123456789"}}) {
    serverSends(148, {"7", row.sent});
    EXPECT_EQ(world.localPlayer.funds(), row.funds);
    EXPECT_EQ(mainCredits(), row.shown);
  }
}

// The shield costs 20.
TEST_F(Store, Q312AnOpenStoreKeepsItsBalance) {
  modMain::openStore();
  serverSends(148, {"7", "25"});
  EXPECT_EQ(mainCredits(), "25");
  EXPECT_EQ(shownFunds(), "10");
  EXPECT_EQ(frmPowerups->lblItemCost[0].BackColor.get(), RGB(128, 95, 95));
  modMain::openStore();
  EXPECT_EQ(shownFunds(), "25");
  EXPECT_EQ(frmPowerups->lblItemCost[0].BackColor.get(), RGB(255, 255, 255));
}

TEST_F(Store, OpponentsFundsAreSeparate) {
  const std::int16_t bob = join(8, 1, "Bob");
  EXPECT_EQ(modMain::playerAt(bob).funds(), 10);
  serverSends(148, {"8", "44"});
  EXPECT_EQ(modMain::playerAt(bob).funds(), 44);
  EXPECT_EQ(mainCredits(), "10");
}

}  // namespace
}  // namespace kelvora
