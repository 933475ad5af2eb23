#include <gtest/gtest.h>

#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

class CentreMessage : public GameTest {};

TEST_F(CentreMessage, NewMessageResetsTheAge) {
  modMain::world.centreMessageAge = 200;
  modMain::showCentreMessage("Hello");
  EXPECT_EQ(modMain::world.centreMessage, "Hello");
  EXPECT_EQ(modMain::world.centreMessageAge, 0);
}

TEST_F(CentreMessage, Q032FourteenTipsAreBlank) {
  modMain::showNextTip();
  EXPECT_EQ(modMain::world.centreMessage, "Right-Click to release or engage breaks");
  for (int i = 1; i < 6; ++i) {
    modMain::showNextTip();
    EXPECT_NE(modMain::world.centreMessage, "") << i;
  }
  for (int i = 6; i < 20; ++i) {
    modMain::world.centreMessageAge = 99;
    modMain::showCentreMessage("something else");
    modMain::showNextTip();
    EXPECT_EQ(modMain::world.centreMessage, "") << i;
  }
  EXPECT_EQ(modMain::world.nextTip, 0);
  modMain::showNextTip();
  EXPECT_EQ(modMain::world.centreMessage, "Right-Click to release or engage breaks");
  EXPECT_EQ(modMain::world.nextTip, 1);
}

TEST_F(CentreMessage, TipsContinueAfterAReconnection) {
  modMain::showNextTip();
  modMain::showNextTip();
  connect();
  netMan::disconnectFromServer();
  connect();
  EXPECT_EQ(modMain::world.nextTip, 2);
}

}  // namespace
}  // namespace kelvora
