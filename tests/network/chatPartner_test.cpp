#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

/// Ann is the local player with node 7. Bob (9) is the first opponent; Cat (11) is the second one and the partner.
class ChatPartner : public GameTest {
 protected:
  ChatPartner() {
    login(0, 7);
    join(9, 1, "Bob");
    join(11, 2, "Cat");
    netMan::selectPrivateTarget("Cat");
  }
  void enter(const std::string& line) {
    frmMain->txtChat.Text = line;
    frmMain->txtChat.KeyPress(13);
  }
  static WireMessage chat(const std::string& target, const std::string& text) {
    return {wire::msgChat, {target, text}};
  }
  static Label& label() { return frmMain->lblPrivChat; }
};

TEST_F(ChatPartner, Q265AnyButtonChangesTheModeButOnlyTheLeftOnePressesTheLabel) {
  for (const int button : {1, 2, 4}) {
    label().BorderStyle = 0;
    const netMan::ChatMode before = netMan::getChatMode();
    label().MouseDown(button, 0, 0, 0);
    EXPECT_EQ(label().BorderStyle.get(), button == 1 ? 1 : 0) << button;
    EXPECT_EQ(netMan::getChatMode(), before) << "not yet";
    label().MouseUp(button, 0, 0, 0);
    EXPECT_EQ(label().BorderStyle.get(), 0) << button;
    EXPECT_NE(netMan::getChatMode(), before) << button;
  }
}

TEST_F(ChatPartner, PublicModeIsShownOnWhite) {
  netMan::setChatMode(netMan::ChatMode::Public);
  EXPECT_EQ(label().BackColor.get(), RGB(255, 255, 255));
  netMan::setChatMode(netMan::ChatMode::Private);
  EXPECT_EQ(label().BackColor.get(), RGB(128, 128, 255));
}

TEST_F(ChatPartner, Q079AnEmptyRowKeepsTheOldNameAndSendsToTheFirstOpponent) {
  frmMain->lbUserName[5].MouseUp(1, 0, 0, 0);  // no player is purple
  EXPECT_EQ(netMan::privateTargetName, "");
  EXPECT_EQ(netMan::privateTargetIndex, 0);
  EXPECT_EQ(netMan::getChatMode(), netMan::ChatMode::Private);
  EXPECT_EQ(label().Caption.get(), "Cat");
  EXPECT_EQ(label().BackColor.get(), RGB(128, 128, 255));
  enter("psst");
  EXPECT_EQ(sentFrames(), std::vector<WireMessage>{chat("9", "(private) psst")});

  label().MouseUp(1, 0, 0, 0);
  label().MouseUp(1, 0, 0, 0);
  EXPECT_EQ(netMan::getChatMode(), netMan::ChatMode::Public) << "there is no name to return to";
  EXPECT_EQ(label().Caption.get(), "Public Chat");
}

TEST_F(ChatPartner, APrivateLineFromANamelessPlayerLeavesTheModePublic) {
  netMan::setChatMode(netMan::ChatMode::Public);
  const std::int16_t nameless = join(12, 3, "");
  serverSends(wire::msgChat, {"12", "(private) psst"});
  EXPECT_EQ(modMain::world.chatLines[0].text, "[] (private) psst");
  EXPECT_EQ(modMain::world.chatLines[0].colour, RGB(255, 0, 255)) << "it counts as received in private";
  EXPECT_EQ(netMan::privateTargetIndex, nameless);
  EXPECT_EQ(netMan::privateTargetName, "");
  EXPECT_EQ(netMan::getChatMode(), netMan::ChatMode::Public);
  EXPECT_EQ(label().Caption.get(), "Public Chat");
  enter("who?");
  EXPECT_EQ(sentFrames(), std::vector<WireMessage>{chat("-1", "who?")});
}

TEST_F(ChatPartner, PrivateLineFromANamelessPlayerRedirectsAPrivateChat) {
  join(12, 3, "");
  serverSends(wire::msgChat, {"12", "(private) psst"});
  EXPECT_EQ(netMan::getChatMode(), netMan::ChatMode::Private);
  EXPECT_EQ(label().Caption.get(), "Cat") << "the label keeps the last name";
  enter("who?");
  EXPECT_EQ(sentFrames(), std::vector<WireMessage>{chat("12", "(private) who?")});
}

}  // namespace
}  // namespace kelvora
