#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

class ChatModeLabel : public GameTest {
 protected:
  ChatModeLabel() {
    login(0, 7);
    join(9, 1, "Bob");
    netMan::selectPrivateTarget("Bob");
  }
};

TEST_F(ChatModeLabel, Q265EveryButtonChangesTheModeAndOnlyTheLeftOneShows) {
  Label& label = frmMain->lblPrivChat;
  for (const int button : {1, 2, 4}) {
    label.BorderStyle = 0;
    const int before = netMan::getChatMode();
    label.MouseDown(button, 0, 0, 0);
    EXPECT_EQ(label.BorderStyle.get(), button == 1 ? 1 : 0) << button;
    EXPECT_EQ(netMan::getChatMode(), before) << "not yet";
    label.MouseUp(button, 0, 0, 0);
    EXPECT_EQ(label.BorderStyle.get(), 0) << button;
    EXPECT_EQ(netMan::getChatMode(), 1 - before) << button;
  }
}

TEST_F(ChatModeLabel, PublicModeIsShownOnWhite) {
  netMan::setChatMode(0);
  EXPECT_EQ(frmMain->lblPrivChat.BackColor.get(), RGB(255, 255, 255));
  netMan::setChatMode(1);
  EXPECT_EQ(frmMain->lblPrivChat.BackColor.get(), RGB(128, 128, 255));
}

}  // namespace
}  // namespace kelvora
