#include <gtest/gtest.h>

#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

using Placements = std::vector<std::pair<int, int>>;

constexpr int left = 1;
constexpr int right = 2;
constexpr int leftAndRight = 3;

class Input : public GameTest {
 protected:
  PictureBox& canvas() { return frmMain->canvas; }
  void move(int button, float x, float y) { canvas().MouseMove(button, 0, x, y); }

  /// Logs in with one of each powerup, and a running shield so that the pulse can be fired.
  void loginWithPowerups() {
    login();
    for (PowerupState& powerup : modMain::world.localPlayer.powerups) powerup.count = 1;
  }
  /// The slots requested.
  std::vector<std::string> requests() {
    std::vector<std::string> slots;
    for (const WireMessage& message : sentFrames()) {
      if (message.id == wire::msgActivateRequest) slots.push_back(message.fields.at(0));
    }
    return slots;
  }
};

TEST_F(Input, TheFunctionKeysRequestTheSixPowerups) {
  loginWithPowerups();
  for (int slot = 0; slot < 5; ++slot) canvas().KeyDown(112 + slot, 0);
  modMain::world.localPlayer.powerups[shieldSlot].active = true;
  canvas().KeyDown(117, 0);
  EXPECT_EQ(requests(), (std::vector<std::string>{"0", "1", "2", "3", "4", "5"}));
}

TEST_F(Input, OtherKeysRequestNothing) {
  loginWithPowerups();
  for (const int keyCode : {0, 8, 13, 27, 32, 49, 65, 111, 118, 123, 255}) canvas().KeyDown(keyCode, 0);
  EXPECT_TRUE(requests().empty());
}

TEST_F(Input, ShiftStatesMakeNoDifference) {
  loginWithPowerups();
  for (const int shift : {1, 2, 4, 7}) canvas().KeyDown(112, shift);
  EXPECT_EQ(requests(), (std::vector<std::string>{"0", "0", "0", "0"}));
}

TEST_F(Input, FunctionKeysWorkFromTheChatLine) {
  loginWithPowerups();
  frmMain->Show();
  frmMain->txtChat.SetFocus();
  frmMain->txtChat.KeyDown(112, 0);
  EXPECT_EQ(requests(), std::vector<std::string>{"0"});
  EXPECT_EQ(frmMain->txtChat.Text.get(), "");
}

TEST_F(Input, RequestsOutsideOneToSixAreIgnored) {
  loginWithPowerups();
  for (const int number : {-1, 0, 7, 100}) modMain::requestPowerup(static_cast<std::int16_t>(number));
  EXPECT_TRUE(requests().empty());
}

TEST_F(Input, TypingOnTheCanvasGoesToTheChatLine) {
  frmMain->Show();
  canvas().KeyPress('h');
  EXPECT_EQ(machine.focus(), &frmMain->txtChat);
  EXPECT_EQ(frmMain->txtChat.Text.get(), "h");
  EXPECT_EQ(frmMain->txtChat.SelStart, 1);
}

TEST_F(Input, Q226TypingAppendsAtTheEndRegardlessOfTheCaret) {
  frmMain->txtChat.Text = "hell";
  frmMain->txtChat.SelStart = 0;
  canvas().KeyPress('o');
  EXPECT_EQ(frmMain->txtChat.Text.get(), "hello");
  EXPECT_EQ(frmMain->txtChat.SelStart, 5);
  canvas().KeyPress(0xE9);
  EXPECT_EQ(frmMain->txtChat.Text.get(), "hello\xE9");
}

TEST_F(Input, TheRightButtonTogglesTheBrakes) {
  clsPlayer& player = modMain::world.localPlayer;
  canvas().MouseDown(right, 0, 100, 100);
  EXPECT_TRUE(player.breaksOn);
  canvas().MouseDown(right, 0, 100, 100);
  EXPECT_FALSE(player.breaksOn);
}

TEST_F(Input, OtherButtonsLeaveTheBrakes) {
  for (const int button : {0, 1, 3, 4, 6, 7}) canvas().MouseDown(button, 0, 100, 100);
  EXPECT_FALSE(modMain::world.localPlayer.breaksOn);
}

TEST_F(Input, BrakesToggleDeadOrAliveWithoutAMessage) {
  login();
  const bool before = modMain::world.localPlayer.breaksOn;
  canvas().MouseDown(right, 0, 100, 100);
  EXPECT_NE(modMain::world.localPlayer.breaksOn, before);
  modMain::world.localPlayer.alive = false;
  canvas().MouseDown(right, 0, 100, 100);
  EXPECT_EQ(modMain::world.localPlayer.breaksOn, before);
  EXPECT_TRUE(server().sent.empty());
}

TEST_F(Input, TheMouseIsTrackedWithAndWithoutAButton) {
  EXPECT_EQ(modMain::world.mousePos, (Vector{0, 0}));
  move(0, 5000, 4000);
  EXPECT_EQ(modMain::world.mousePos, (Vector{5000, 4000}));
  move(left, 6000, 3000);
  EXPECT_EQ(modMain::world.mousePos, (Vector{6000, 3000}));
}

TEST_F(Input, OnlyTheLeftButtonLocksTheMouseFromItsFirstMove) {
  EXPECT_FALSE(frmMain->isLockMouse());
  canvas().MouseDown(left, 0, 5000, 4000);
  EXPECT_FALSE(frmMain->isLockMouse()) << "a press without a move doesn't lock the mouse";
  move(left, 5001, 4000);
  EXPECT_TRUE(frmMain->isLockMouse());
  move(leftAndRight, 5002, 4000);
  EXPECT_FALSE(frmMain->isLockMouse());
}

TEST_F(Input, ReleasingAnyButtonUnlocksTheMouse) {
  for (const int button : {1, 2, 4}) {
    move(left, 5000, 4000);
    ASSERT_TRUE(frmMain->isLockMouse());
    canvas().MouseUp(button, 0, 5000, 4000);
    EXPECT_FALSE(frmMain->isLockMouse()) << button;
  }
}

TEST_F(Input, RightClickWhileTheLeftIsHeldTogglesTheBrakesAndUnlocksTheMouse) {
  move(left, 5000, 4000);
  canvas().MouseDown(right, 0, 5000, 4000);
  EXPECT_TRUE(modMain::world.localPlayer.breaksOn);
  EXPECT_TRUE(frmMain->isLockMouse());
  move(leftAndRight, 5010, 4000);
  EXPECT_FALSE(frmMain->isLockMouse());
}

// The window is at (0, 0). Screen pixels are units x 916 / 13605, rounded, plus 45 downward.

TEST_F(Input, NearTheLeftEdgeThePointerIsPushedRight) {
  move(left, 10, 5000);  // 0.67 -> 1; 336.64 + 45 -> 382
  EXPECT_EQ(machine.pointerPlacements, (Placements{{31, 382}}));
}

TEST_F(Input, NearTheRightEdgeThePointerIsPushedLeft) {
  move(left, 11'440, 5000);  // 770.24 -> 770
  EXPECT_EQ(machine.pointerPlacements, (Placements{{740, 382}}));
}

TEST_F(Input, NearTheTopThePointerIsPushedDown) {
  move(left, 5000, 10);  // 336.64 -> 337; 0.67 + 45 -> 46
  EXPECT_EQ(machine.pointerPlacements, (Placements{{337, 76}}));
}

TEST_F(Input, NearTheBottomThePointerIsPushedUp) {
  move(left, 5000, 9100);  // 612.69 + 45 -> 658
  EXPECT_EQ(machine.pointerPlacements, (Placements{{337, 628}}));
}

TEST_F(Input, AnEdgeReachesJustUnderThirtyUnitsInward) {
  move(left, 30, 30);
  move(left, 11'445 - 30, 9'120 - 30);
  EXPECT_TRUE(machine.pointerPlacements.empty());
  move(left, 29.5F, 5000);
  move(left, 11'445 - 29.5F, 5000);
  move(left, 5000, 29.5F);
  move(left, 5000, 9'120 - 29.5F);
  EXPECT_EQ(machine.pointerPlacements.size(), 4U);
}

// 29 units are 1.95 pixels, which rounds to 2.
TEST_F(Input, Q224TwoPixelsFromAnEdgeThePointerIsPushedThirtyPixels) {
  move(left, 29, 5000);
  EXPECT_EQ(machine.pointerPlacements, (Placements{{2 + 30, 382}}));
}

// 22.5 units round to 22 (even), which is 1.48 pixels, so 1. Rounded once they would be 1.51 pixels, so 2.
TEST_F(Input, Q238ThePositionIsRoundedToUnitsAndThenToPixels) {
  move(left, 22.5F, 5000);
  EXPECT_EQ(machine.pointerPlacements, (Placements{{31, 382}}));
}

TEST_F(Input, Q225TheBallFliesOnTowardsTheLastKnownPoint) {
  login();
  modMain::world.localPlayer.breaksOn = false;
  move(0, 5722, 0);  // straight up; then the mouse leaves
  modMain::runFrame();
  const Vector start = modMain::world.localPlayer.position;
  for (int frame = 0; frame < 5; ++frame) modMain::runFrame();
  EXPECT_EQ(modMain::world.mousePos, (Vector{5722, 0}));
  EXPECT_EQ(modMain::world.localPlayer.position, (Vector{start.x, start.y - 5 * 300}));
}

TEST_F(Input, Q035ACornerPlacesThePointerTwice) {
  move(left, 10, 10);
  EXPECT_EQ(machine.pointerPlacements, (Placements{{31, 46}, {31, 76}}));
}

TEST_F(Input, PushedPointerIncludesTheWindowsPosition) {
  frmMain->Left = 1000;
  frmMain->Top = 500;
  move(left, 11'440, 9'100);  // 12440 -> 837.56 -> 838; 9600 -> 646.35 + 45 -> 691
  EXPECT_EQ(machine.pointerPlacements, (Placements{{808, 691}, {808, 661}}));
}

TEST_F(Input, Q034PixelConversionAssumesTheDesignWindowAtAnySize) {
  frmMain->clientResized(20'000, 12'000);
  ASSERT_EQ(canvas().Width.get(), 18'035);
  move(left, 10, 5000);
  EXPECT_EQ(machine.pointerPlacements, (Placements{{31, 382}}));
}

TEST_F(Input, Q223StoresTheEventsPositionNotThePushedOne) {
  move(left, 10, 10);
  EXPECT_EQ(modMain::world.mousePos, (Vector{10, 10}));
}

TEST_F(Input, MouseLeavesFreelyWhileTheLeftButtonIsUp) {
  for (const int button : {0, 2, 3, 4}) move(button, 5, 5);
  EXPECT_TRUE(machine.pointerPlacements.empty());
  EXPECT_EQ(modMain::world.mousePos, (Vector{5, 5}));
}

}  // namespace
}  // namespace kelvora
