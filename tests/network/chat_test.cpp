#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

constexpr int returnCode = 13;
constexpr int upCode = 38;
constexpr int downCode = 40;
constexpr Colour publicBack = RGB(255, 255, 255);
constexpr Colour privateBack = RGB(128, 128, 255);

/// Ann is the local player with node 7. Bob (9) and Cat (11) are opponents.
class Chat : public GameTest {
 protected:
  Chat() {
    login(0, 7);
    join(9, 1, "Bob");
    join(11, 2, "Cat");
    modMain::world.chatLines = {};
  }
  void key(int code) { frmMain->txtChat.KeyDown(code, 0); }
  /// Types a line and presses Enter.
  void enter(const std::string& line) {
    frmMain->txtChat.Text = line;
    key(returnCode);
    frmMain->txtChat.KeyPress(returnCode);
  }
  const std::string& entryText() { return frmMain->txtChat.Text; }
  std::vector<WireMessage> chats() { return sentFrames(); }
  const ChatLine& lastLine() { return modMain::world.chatLines[0]; }
  static WireMessage chat(const std::string& target, const std::string& text) {
    return {wire::msgChat, {target, text}};
  }
};

TEST_F(Chat, ALineGoesToEverybodyAndIsNotShownYet) {
  enter("hello there");
  EXPECT_EQ(chats(), std::vector<WireMessage>{chat("-1", "hello there")});
  EXPECT_EQ(entryText(), "");
  EXPECT_EQ(lastLine().text, "");
}

TEST_F(Chat, AnEmptyLineIsNotSent) {
  enter("");
  EXPECT_TRUE(chats().empty());
}

TEST_F(Chat, OnlyEnterSends) {
  frmMain->txtChat.Text = "hello";
  frmMain->txtChat.KeyPress('x');
  EXPECT_TRUE(chats().empty());
  EXPECT_EQ(entryText(), "hello");
}

TEST(ChatSecret, BeginsBehindTheMarkOfACommand) {
  constexpr std::size_t none = std::string::npos;
  EXPECT_EQ(netMan::secretAt(""), none);
  EXPECT_EQ(netMan::secretAt("hello!"), none);
  EXPECT_EQ(netMan::secretAt("~!login x"), none);
  EXPECT_EQ(netMan::secretAt("!"), 1U);
  EXPECT_EQ(netMan::secretAt("!login x"), 1U);
  EXPECT_EQ(netMan::secretAt("  !login x"), 3U);
  EXPECT_EQ(netMan::secretAt("\xE9\t\x7F!login x"), 4U) << "what isn't sent";
  EXPECT_EQ(netMan::secretAt("(Private) !login x"), 11U);
  EXPECT_EQ(netMan::secretAt("(private)!login x"), none);
}

TEST_F(Chat, OnlyCharactersFrom32To127AreKept) {
  std::string all;
  std::string kept;
  for (int c = 0; c < 256; ++c) {
    all += static_cast<char>(c);
    if (c >= 32 && c <= 127) kept += static_cast<char>(c);
  }
  EXPECT_EQ(netMan::filterChatText(all), kept);
  enter(
      "a\x82"
      "b\x81"
      "c\xE9");
  EXPECT_EQ(chats(), std::vector<WireMessage>{chat("-1", "abc")});
}

TEST_F(Chat, Q076ALineFilteredToNothingIsStillSent) {
  enter("\xE9\xE9");
  netMan::selectPrivateTarget("Bob");
  enter("\xE9");
  EXPECT_EQ(chats(), (std::vector<WireMessage>{chat("-1", ""), chat("9", "(private) ")}));
}

TEST_F(Chat, TildeAfterADroppedCharacterIsChat) {
  enter("\xE9~?");
  EXPECT_EQ(chats(), std::vector<WireMessage>{chat("-1", "~?")});
  EXPECT_TRUE(machine.messageBoxes.empty()) << "the filter runs after the first character is checked";
}

TEST_F(Chat, APrivateLineGoesToThePartner) {
  netMan::selectPrivateTarget("cat");
  enter("psst");
  EXPECT_EQ(chats(), std::vector<WireMessage>{chat("11", "(private) psst")});
}

TEST_F(Chat, Q077APrivateLineToADepartedPlayerGoesToNode0) {
  netMan::selectPrivateTarget("Cat");
  serverSends(wire::msgPlayerLeft, {"11"});
  enter("still there?");
  EXPECT_EQ(chats(), std::vector<WireMessage>{chat("0", "(private) still there?")});
}

TEST_F(Chat, WithoutAConnectionALineIsDroppedButKeptInTheHistory) {
  netMan::disconnectFromServer();
  modMain::world.chatLines = {};
  enter("anyone?");
  EXPECT_TRUE(server().sent.empty());
  EXPECT_EQ(lastLine().text, "");
  EXPECT_EQ(frmMain->chatHistory[0], "anyone?");
}

TEST_F(Chat, PublicLinesAreOfTypeZeroIncludingYourOwn) {
  serverSends(wire::msgChat, {"9", "hi all"});
  EXPECT_EQ(lastLine().text, "[Bob] hi all");
  EXPECT_EQ(lastLine().colour, RGB(128, 255, 128));
  serverSends(wire::msgChat, {"7", "hi Bob"});
  EXPECT_EQ(lastLine().text, "[Ann] hi Bob");
  EXPECT_EQ(lastLine().colour, RGB(128, 255, 128));
}

TEST_F(Chat, EchoOfYourOwnPrivateLineIsOfTypeOne) {
  serverSends(wire::msgChat, {"7", "(private) psst"});
  EXPECT_EQ(lastLine().text, "[Ann] (private) psst");
  EXPECT_EQ(lastLine().colour, RGB(255, 255, 255));
  EXPECT_EQ(netMan::getChatMode(), netMan::ChatMode::Public) << "only others become the partner";
}

TEST_F(Chat, Q078APrivateMessageMakesItsSenderThePartner) {
  serverSends(wire::msgChat, {"11", "(private) psst"});
  EXPECT_EQ(lastLine().text, "[Cat] (private) psst");
  EXPECT_EQ(lastLine().colour, RGB(255, 0, 255));
  EXPECT_EQ(netMan::privateTargetIndex, 1);
  EXPECT_EQ(netMan::privateTargetName, "Cat");
  EXPECT_EQ(frmMain->lblPrivChat.Caption.get(), "Cat");
  enter("what?");
  EXPECT_EQ(chats(), std::vector<WireMessage>{chat("11", "(private) what?")});
}

TEST_F(Chat, PrefixIgnoresCaseAndMustComeFirst) {
  serverSends(wire::msgChat, {"9", "(PRIVATE) PSST"});
  EXPECT_EQ(lastLine().colour, RGB(255, 0, 255));
  serverSends(wire::msgChat, {"9", "(private)psst"});
  EXPECT_EQ(lastLine().colour, RGB(128, 255, 128));
  serverSends(wire::msgChat, {"9", "x(private) psst"});
  EXPECT_EQ(lastLine().colour, RGB(128, 255, 128));
}

TEST_F(Chat, ModesAreShownOnTheLabel) {
  Label& label = frmMain->lblPrivChat;
  netMan::selectPrivateTarget("Bob");
  EXPECT_EQ(netMan::getChatMode(), netMan::ChatMode::Private);
  EXPECT_EQ(label.Caption.get(), "Bob");
  EXPECT_EQ(label.BackColor.get(), privateBack);
  netMan::setChatMode(netMan::ChatMode{2});
  EXPECT_EQ(netMan::getChatMode(), netMan::ChatMode::Public) << "any mode other than 1 is public";
  EXPECT_EQ(label.Caption.get(), "Public Chat");
  EXPECT_EQ(label.BackColor.get(), publicBack);
}

TEST_F(Chat, ClicksOnTheModeLabelChangeTheMode) {
  Label& label = frmMain->lblPrivChat;
  label.BorderStyle = 0;
  label.MouseDown(2, 0, 0, 0);
  EXPECT_EQ(label.BorderStyle.get(), 0);
  label.MouseDown(1, 0, 0, 0);
  EXPECT_EQ(label.BorderStyle.get(), 1);
  label.MouseUp(2, 0, 0, 0);
  EXPECT_EQ(label.BorderStyle.get(), 0);
  EXPECT_EQ(netMan::getChatMode(), netMan::ChatMode::Public) << "no partner has been chosen";
  EXPECT_EQ(label.Caption.get(), "Public Chat");

  netMan::selectPrivateTarget("Bob");
  label.MouseUp(1, 0, 0, 0);
  EXPECT_EQ(netMan::getChatMode(), netMan::ChatMode::Public);
  label.MouseUp(1, 0, 0, 0);
  EXPECT_EQ(netMan::getChatMode(), netMan::ChatMode::Private);
  EXPECT_EQ(label.Caption.get(), "Bob");
}

TEST_F(Chat, AClickOnANameChoosesThePartner) {
  Label& name = frmMain->lbUserName[2];
  const Colour back = name.BackColor;
  const Colour fore = name.ForeColor;
  name.MouseDown(2, 0, 0, 0);
  EXPECT_EQ(name.BorderStyle.get(), 1);
  EXPECT_EQ(netMan::getChatMode(), netMan::ChatMode::Public);
  name.MouseUp(2, 0, 0, 0);
  EXPECT_EQ(name.BorderStyle.get(), 0);
  EXPECT_EQ(name.BackColor.get(), back);
  EXPECT_EQ(name.ForeColor.get(), fore);
  EXPECT_EQ(netMan::privateTargetName, "Cat");
  EXPECT_EQ(netMan::privateTargetIndex, 1);
  EXPECT_EQ(netMan::getChatMode(), netMan::ChatMode::Private);
}

TEST_F(Chat, Q079AClickOnYourOwnNameSendsToTheFirstOpponent) {
  frmMain->lbUserName[0].MouseUp(1, 0, 0, 0);
  EXPECT_EQ(frmMain->lblPrivChat.Caption.get(), "Ann");
  enter("me?");
  EXPECT_EQ(chats(), std::vector<WireMessage>{chat("9", "(private) me?")});
}

TEST_F(Chat, ModeAndPartnerSurviveADisconnection) {
  netMan::selectPrivateTarget("Cat");
  netMan::disconnectFromServer();
  EXPECT_EQ(netMan::getChatMode(), netMan::ChatMode::Private);
  EXPECT_EQ(netMan::privateTargetName, "Cat");
  EXPECT_EQ(netMan::privateTargetIndex, 1);
  EXPECT_EQ(frmMain->lblPrivChat.Caption.get(), "Cat");
}

TEST_F(Chat, Q081TheNewLineTakesTheTwoNewestPlaces) {
  enter("one");
  EXPECT_EQ(frmMain->chatHistory[0], "one");
  EXPECT_EQ(frmMain->chatHistory[1], "one");
  EXPECT_EQ(frmMain->chatHistory[2], "");
  enter("two");
  EXPECT_EQ(frmMain->chatHistory[0], "two");
  EXPECT_EQ(frmMain->chatHistory[1], "two");
  EXPECT_EQ(frmMain->chatHistory[2], "one");
  EXPECT_EQ(frmMain->chatHistory[3], "");
}

TEST_F(Chat, LinesAreStoredAsTyped) {
  enter("one");
  enter("");
  EXPECT_EQ(frmMain->chatHistory[0], "");
  EXPECT_EQ(frmMain->chatHistory[1], "");
  EXPECT_EQ(frmMain->chatHistory[2], "one");
  forgetSent();
  enter("  two ");
  EXPECT_EQ(frmMain->chatHistory[0], "  two ");
  EXPECT_EQ(frmMain->chatHistory[2], "");
  EXPECT_EQ(frmMain->chatHistory[3], "one");
  EXPECT_EQ(chats(), std::vector<WireMessage>{chat("-1", "  two ")});
  enter("caf\xE9");
  EXPECT_EQ(frmMain->chatHistory[0], "caf\xE9");
}

TEST_F(Chat, Q080UpAddsABlankAndDownDoesNot) {
  enter("one");
  enter("two");
  enter("three");
  key(upCode);
  EXPECT_EQ(entryText(), "three ");
  EXPECT_EQ(frmMain->txtChat.SelStart.get(), 6);
  key(upCode);
  EXPECT_EQ(entryText(), "two ");
  key(downCode);
  EXPECT_EQ(entryText(), "three");
  EXPECT_EQ(frmMain->txtChat.SelStart.get(), 5);
}

TEST_F(Chat, Q081EnterKeepsTheHistoryPosition) {
  enter("one");
  enter("two");
  key(upCode);
  enter("three");
  EXPECT_EQ(frmMain->chatHistoryPosition, 1);
  key(upCode);
  EXPECT_EQ(entryText(), "two ") << "entries: three, three, two, one";
}

TEST_F(Chat, HistoryStopsAtBothEnds) {
  enter("one");
  key(downCode);
  EXPECT_EQ(entryText(), "");
  EXPECT_EQ(frmMain->chatHistoryPosition, 0);
  frmMain->chatHistory[255] = "oldest";
  for (int i = 0; i < 300; ++i) key(upCode);
  EXPECT_EQ(frmMain->chatHistoryPosition, 255);
  EXPECT_EQ(entryText(), "oldest ");
  frmMain->txtChat.Text = "typed";
  for (int i = 0; i < 255; ++i) key(downCode);
  EXPECT_EQ(frmMain->chatHistoryPosition, 0);
  EXPECT_EQ(entryText(), "one");
  key(downCode);
  EXPECT_EQ(entryText(), "");
}

TEST_F(Chat, EveryKeyIsPassedOnToTheCanvas) {
  std::vector<int> seen;
  frmMain->canvas.KeyDown = [&](int code, int) { seen.push_back(code); };
  for (const int code : {upCode, downCode, returnCode, 112, 65}) key(code);
  EXPECT_EQ(seen, (std::vector<int>{upCode, downCode, returnCode, 112, 65}));
}

}  // namespace
}  // namespace kelvora
