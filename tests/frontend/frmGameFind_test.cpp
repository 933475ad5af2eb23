#include "frontend/frmGameFind.h"

#include <gtest/gtest.h>

#include "base/fault.h"
#include "frontend/frmConnect.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

using Rows = std::vector<std::vector<std::string>>;

class GameFinder : public GameTest {
 protected:
  HeadlessSocket& host() { return machine.socketOf(frmGameFind->websock); }
  /// The finder is loaded and its request sent.
  void request() {
    host().acceptConnection();
    passEvents();
  }
  /// A whole fetch.
  void list(const std::string& answer) {
    if (frmGameFind->websock.State() == sckClosed) frmGameFind->requestHostList();
    request();
    host().deliver(answer);
    passEvents();
  }
  static std::string status() { return frmGameFind->lblStatus.Caption; }
  static const hostEntry& entry(int number) { return frmGameFind->hosts.at(static_cast<std::size_t>(number)); }
  static Rows rows() {
    const Grid& grid = frmGameFind->grid;
    Rows found;
    for (int row = 0; row < grid.Rows; ++row) {
      found.emplace_back();
      for (int column = 0; column < grid.Cols; ++column) found.back().push_back(grid.TextMatrix(row, column));
    }
    return found;
  }
  static inline const std::vector<std::string> heading = {"IP Addr", "Port", "Pass?", "Players", "Notes"};
};

TEST_F(GameFinder, EveryControlStandsAtItsPlaceWithItsText) {
  FrmGameFind f;
  struct Row {
    const Control* control;
    float left, top, width, height;
  };
  for (const Row& row : {
           Row{&f.lblHeader, 120, 120, 5055, 255},
           Row{&f.cmdRefresh, 5340, 120, 1455, 255},
           Row{&f.chkPassword, 6840, 120, 2535, 255},
           Row{&f.chkEmpty, 6840, 420, 2535, 255},
           Row{&f.chkFull, 6840, 720, 2535, 255},
           Row{&f.grid, 60, 1080, 9435, 4815},
           Row{&f.lblStatus, 60, 5940, 9375, 315},
       }) {
    SCOPED_TRACE(row.top);
    EXPECT_EQ(row.control->container(), &f);
    EXPECT_EQ(row.control->Left.get(), row.left);
    EXPECT_EQ(row.control->Top.get(), row.top);
    EXPECT_EQ(row.control->Width.get(), row.width);
    EXPECT_EQ(row.control->Height.get(), row.height);
  }
  EXPECT_EQ(f.cmdRefresh.Caption.get(), "Refresh");
  EXPECT_EQ(f.chkPassword.Caption.get(), "Include password protected");
  EXPECT_EQ(f.chkPassword.Value.get(), 0);
  EXPECT_EQ(f.chkEmpty.Caption.get(), "Include empty hosts");
  EXPECT_EQ(f.chkEmpty.Value.get(), 1);
  EXPECT_EQ(f.chkFull.Caption.get(), "Include full hosts");
  EXPECT_EQ(f.chkFull.Value.get(), 0);
  EXPECT_EQ(f.lblStatus.Caption.get(), "");
}

TEST_F(GameFinder, IsAFixedWindow) {
  const FrmGameFind f;
  EXPECT_EQ(f.Caption.get(), "Game Finder");
  EXPECT_EQ(f.design.clientWidth, 9525);
  EXPECT_EQ(f.design.clientHeight, 6285);
  EXPECT_EQ(f.design.border, Form::Border::Fixed);
}

TEST_F(GameFinder, GetListOpensItModally) {
  frmConnect->Show();
  bool stood = false;
  machine.onModal = [&stood](Form& form) { stood = &form == &*frmGameFind && form.Visible; };
  frmConnect->cmdGetList.Click();
  EXPECT_TRUE(stood);
  EXPECT_EQ(machine.modalForms, std::vector<std::string>{"Game Finder"});
  EXPECT_TRUE(frmConnect.isVisible());
}

TEST_F(GameFinder, AtLoadNamesTheVersionAndStartsAFetch) {
  EXPECT_EQ(frmGameFind->lblHeader.Caption.get(),
            "Servers published less than one hour ago matching your version: 1.2.1");
  EXPECT_EQ(status(), "Connecting to game find server...");
  EXPECT_EQ(host().connects, (std::vector<std::pair<std::string, int>>{{"web.invalid", 80}}));
}

TEST_F(GameFinder, AsksTheWebHostAtItsOwnPort) {
  machine.host = "127.0.0.1:8123";
  EXPECT_EQ(frmGameFind->websock.RemoteHost, "127.0.0.1");
  EXPECT_EQ(frmGameFind->websock.RemotePort, 8123);
  EXPECT_EQ(host().connects, (std::vector<std::pair<std::string, int>>{{"127.0.0.1", 8123}}));
  request();
  EXPECT_NE(host().sent.find("\r\nHost: 127.0.0.1:8123\r\n"), std::string::npos);
}

TEST_F(GameFinder, Q162TheRequestIsABrowsers) {
  *frmGameFind;
  request();
  EXPECT_EQ(status(), "Requesting list...");
  EXPECT_EQ(host().sendings,
            std::vector<std::string>{
                "GET /games/kelvora/gethosts.php?version=1.2.1&password=0&full=0&empty=1 HTTP/1.1\r\n"
                "Host: web.invalid\r\n"
                "User-Agent: Mozilla/5.0 (Windows; U; Windows NT 5.1; en-US; rv:1.9.0.3) Gecko/2008092417 "
                "Firefox/3.0.3\r\n"
                "Accept: text/html,application/xhtml+xml,application/xml;q=0.9,*/*;q=0.8\r\n"
                "Accept-Language: en-us,en;q=0.5\r\n"
                "Accept-Charset: ISO-8859-1,utf-8;q=0.7,*;q=0.7\r\n"
                "Keep-Alive: 300\r\n"
                "Connection: keep-alive\r\n"
                "\r\n"});
}

TEST_F(GameFinder, TheQueryHoldsAllThreeFlagsAsDigits) {
  for (int bits = 0; bits < 8; ++bits) {
    const int password = bits & 1;
    const int full = (bits >> 1) & 1;
    const int empty = (bits >> 2) & 1;
    frmGameFind->chkPassword.Value = password;
    frmGameFind->chkFull.Value = full;
    frmGameFind->chkEmpty.Value = empty;
    frmGameFind->requestHostList();
    request();
    const std::string query = "?version=1.2.1&password=" + std::to_string(password) + "&full=" + std::to_string(full) +
                              "&empty=" + std::to_string(empty) + " HTTP/1.1\r\n";
    EXPECT_NE(host().sendings.back().find(query), std::string::npos) << host().sendings.back();
  }
}

TEST_F(GameFinder, RefreshAndEveryBoxStartANewFetch) {
  FrmGameFind& finder = *frmGameFind;
  list("[a|1|0|n|1|2]-END-");
  int fetches = 1;
  finder.cmdRefresh.Click();
  EXPECT_EQ(host().connects.size(), static_cast<std::size_t>(++fetches));
  for (CheckBox* box : {&finder.chkPassword, &finder.chkEmpty, &finder.chkFull}) {
    finder.hostBuffer = "old";
    box->MouseDown(1, 0, 15, 15);
    EXPECT_EQ(host().connects.size(), static_cast<std::size_t>(++fetches));
    EXPECT_EQ(finder.hostBuffer, "");
    EXPECT_EQ(status(), "Connecting to game find server...");
  }
}

TEST_F(GameFinder, ANewFetchClosesTheOneUnderWay) {
  *frmGameFind;
  request();
  host().deliver("[a|1|0|n|1|2]");
  passEvents();
  EXPECT_EQ(host().closes, 0);
  frmGameFind->cmdRefresh.Click();
  EXPECT_EQ(host().closes, 1);
  EXPECT_EQ(frmGameFind->websock.State(), sckConnecting);
  list("[b|1|0|n|1|2]-END-");
  ASSERT_EQ(frmGameFind->hostCount, 1);
  EXPECT_EQ(entry(1).address, "b");
}

TEST_F(GameFinder, AnUnconnectedSocketIsNotClosedByTheFirstFetch) {
  *frmGameFind;
  EXPECT_EQ(host().closes, 0);
}

TEST_F(GameFinder, Q160TheBoxesAreReadWhenTheConnectionStands) {
  *frmGameFind;
  request();
  // As a rule the release has changed the box before the host answers.
  frmGameFind->chkFull.MouseDown(1, 0, 15, 15);
  frmGameFind->chkFull.Value = 1;
  request();
  EXPECT_NE(host().sendings.back().find("&full=1&"), std::string::npos);
  // A host that is faster than the finger on the button hears the old value.
  frmGameFind->chkFull.MouseDown(1, 0, 15, 15);
  request();
  frmGameFind->chkFull.Value = 0;
  EXPECT_NE(host().sendings.back().find("&full=1&"), std::string::npos);
}

TEST_F(GameFinder, Q282AnyPressOnABoxFetchesAndTheKeysDoNot) {
  FrmGameFind& finder = *frmGameFind;
  ASSERT_EQ(host().connects.size(), 1U);
  for (CheckBox* box : {&finder.chkPassword, &finder.chkEmpty, &finder.chkFull}) {
    box->Value = 1 - box->Value;
    if (box->Click) box->Click();
  }
  EXPECT_EQ(host().connects.size(), 1U);
  constexpr int rightButton = 2;
  finder.chkFull.MouseDown(rightButton, 0, 15, 15);
  EXPECT_EQ(host().connects.size(), 2U);
  EXPECT_EQ(finder.chkFull.Value.get(), 1);
}

TEST_F(GameFinder, ReadsARecordsSixFields) {
  list("HTTP/1.1 200 OK\r\n\r\n[192.0.2.7|2010|0|friendly game|3|8]-END-");
  ASSERT_EQ(frmGameFind->hostCount, 1);
  ASSERT_EQ(frmGameFind->hosts.size(), 2U);
  EXPECT_EQ(entry(0).address, "");
  EXPECT_EQ(entry(1).address, "192.0.2.7");
  EXPECT_EQ(entry(1).port, 2010);
  EXPECT_FALSE(entry(1).passwordRequired);
  EXPECT_EQ(entry(1).notes, "friendly game");
  EXPECT_EQ(entry(1).players, 3);
  EXPECT_EQ(entry(1).maxPlayers, 8);
  EXPECT_EQ(status(), "Done");
  EXPECT_EQ(frmGameFind->websock.State(), sckClosed);
}

TEST_F(GameFinder, ShowsARowAServerUnderItsHeading) {
  list("[192.0.2.7|2010|0|friendly game|3|8][arena.test|3000|1||0|6]-END-");
  EXPECT_EQ(rows(), (Rows{heading,
                          {"192.0.2.7", "2010", "open", "3 / 8", "friendly game"},
                          {"arena.test", "3000", "REQUIRED", "0 / 6", ""}}));
  const Grid& grid = frmGameFind->grid;
  EXPECT_EQ(grid.FixedRows, 1);
  EXPECT_EQ(grid.FixedCols, 0);
  EXPECT_EQ(grid.ColWidth(0), 2000);
  EXPECT_EQ(grid.ColWidth(4), 5000);
  for (int column = 0; column < 5; ++column) EXPECT_EQ(grid.ColAlignment(column), 1) << column;
}

TEST_F(GameFinder, NoServerGivesTheHeadingAlone) {
  list("HTTP/1.1 200 OK\r\n\r\n-END-");
  EXPECT_EQ(rows(), Rows{heading});
  EXPECT_EQ(frmGameFind->grid.FixedRows, 0);
  EXPECT_EQ(frmGameFind->hostCount, 0);
  EXPECT_EQ(status(), "Done");
}

TEST_F(GameFinder, EveryFetchReplacesTheList) {
  list("[a|1|1|n|1|2][b|1|0|n|1|2]-END-");
  list("[c|2|0|m|3|4]-END-");
  EXPECT_EQ(rows(), (Rows{heading, {"c", "2", "open", "3 / 4", "m"}}));
  EXPECT_EQ(frmGameFind->hosts.size(), 2U);
  list("-END-");
  EXPECT_EQ(rows(), Rows{heading});
  EXPECT_EQ(frmGameFind->grid.FixedRows, 0);
}

TEST_F(GameFinder, ThePasswordFlagIsANumber) {
  struct Case {
    const char* text;
    bool required;
  };
  for (const Case& test :
       {Case{"1", true}, Case{" 1 ", true}, Case{"1.0", true}, Case{"0", false}, Case{"2", false}, Case{"-1", false}}) {
    list(std::string("[a|1|") + test.text + "|n|1|2]-END-");
    EXPECT_EQ(entry(1).passwordRequired, test.required) << test.text;
  }
}

TEST_F(GameFinder, NumbersAreReadLenientlyAndRoundedToEven) {
  list("[a|2010.5|0|n|2.5 of|x]-END-");
  EXPECT_EQ(entry(1).port, 2010);
  EXPECT_EQ(entry(1).players, 2);
  EXPECT_EQ(entry(1).maxPlayers, 0);
}

TEST_F(GameFinder, CollectsAnAnswerInManyPieces) {
  *frmGameFind;
  request();
  for (const char c : std::string("[192.0.2.7|2010|0|n|3|8]")) {
    host().deliver(std::string(1, c));
    passEvents();
    EXPECT_EQ(status(), "Requesting list...");
  }
  host().deliver("-END-");
  passEvents();
  EXPECT_EQ(status(), "Done");
  EXPECT_EQ(entry(1).address, "192.0.2.7");
}

TEST_F(GameFinder, Q281WhatIsBeyondFortyNineReadsWaitsForMore) {
  *frmGameFind;
  request();
  // 13 bytes a read: the mark begins in the 49th and ends in the 50th.
  host().deliver("[a|1|0|n|1|2]" + std::string(48 * 13 - 2, 'x') + "-END-", 13);
  passEvents();
  EXPECT_EQ(frmGameFind->hostBuffer.size(), 49U * 13U);
  EXPECT_EQ(status(), "Requesting list...");
  host().deliver(" ");
  passEvents();
  EXPECT_EQ(status(), "Done");
}

TEST_F(GameFinder, FindsTheEndMarkWhereverItIsSplit) {
  const std::string mark = "-END-";
  for (std::size_t at = 0; at <= mark.size(); ++at) {
    frmGameFind->requestHostList();
    request();
    host().deliver("[a|1|0|n|1|2]" + mark.substr(0, at));
    host().deliver(mark.substr(at));
    passEvents();
    EXPECT_EQ(status(), "Done") << at;
    EXPECT_EQ(frmGameFind->hostCount, 1);
  }
  frmGameFind->requestHostList();
  request();
  for (const char c : mark) host().deliver(std::string(1, c));
  passEvents();
  EXPECT_EQ(status(), "Done");
}

TEST_F(GameFinder, TextBehindTheEndMarkIsReadWithTheRest) {
  list("-END-[a|1|0|n|1|2]");
  EXPECT_EQ(frmGameFind->hostCount, 1);
}

TEST_F(GameFinder, ASeventhFieldIsDropped) {
  list("[a|1|0|n|3|8|more]-END-");
  EXPECT_EQ(rows(), (Rows{heading, {"a", "1", "open", "3 / 8", "n"}}));
}

TEST_F(GameFinder, ARecordOfFiveFieldsHasNoPlaces) {
  list("[a|1|0|n|3]-END-");
  EXPECT_EQ(entry(1).players, 3);
  EXPECT_EQ(entry(1).maxPlayers, 0);
}

TEST_F(GameFinder, SignsAheadOfTheFirstRecordAreIgnored) {
  list("a|b]c|d|e]f[a|1|0|n|3|8]-END-");
  EXPECT_EQ(rows(), (Rows{heading, {"a", "1", "open", "3 / 8", "n"}}));
}

TEST_F(GameFinder, Q163ABracketInTheHeadersBeginsARecord) {
  list("HTTP/1.1 200 OK\r\nServer: x [y]\r\n\r\n[a|1|0|n|1|2]-END-");
  ASSERT_EQ(frmGameFind->hostCount, 2);
  EXPECT_EQ(entry(1).address, "y");
  EXPECT_EQ(entry(2).port, 1);
}

TEST_F(GameFinder, Q164TextBehindARecordStandsInFrontOfTheNextAddress) {
  list("[a|1|0|n|1|2] and [b|1|0|n|1|2]-END-");
  EXPECT_EQ(entry(1).address, "a");
  EXPECT_EQ(entry(2).address, " and b");
}

TEST_F(GameFinder, Q164ALineFeedStaysAndReturnAndCode20Go) {
  list(
      "[a|1|0|n\r\x14"
      "n|1|2]\r\n[b\x14|1|0|n|1|2]\r\n-END-");
  EXPECT_EQ(entry(1).notes, "nn");
  EXPECT_EQ(entry(2).address, "\nb");
}

TEST_F(GameFinder, Q164ASecondEndOfARecordReadsItsLastFieldAgain) {
  list("[a|1|0|n|1|2]7]-END-");
  EXPECT_EQ(entry(1).maxPlayers, 7);
}

TEST_F(GameFinder, Q165AFlagThatIsNoNumberIsAFault) {
  for (const char* flag : {"", " ", "yes", "1x"}) {
    frmGameFind->requestHostList();
    request();
    host().deliver(std::string("[a|1|") + flag + "|n|1|2]-END-");
    EXPECT_THROW(passEvents(), RuntimeFault) << flag;
    EXPECT_EQ(status(), "Processing data...");
  }
}

TEST_F(GameFinder, ANumberBeyond16BitsIsAFault) {
  for (const char* record : {"[a|70000|0|n|1|2]", "[a|32768|0|n|1|2]", "[a|1|0|n|40000|2]", "[a|1|0|n|1|-32769]"}) {
    frmGameFind->requestHostList();
    request();
    host().deliver(std::string(record) + "-END-");
    EXPECT_THROW(passEvents(), RuntimeFault) << record;
  }
}

TEST_F(GameFinder, MoreRecordsThan16BitsCountAreAFault) {
  list(std::string(32767, '[') + "-END-");
  EXPECT_EQ(frmGameFind->hostCount, 32767);
  EXPECT_EQ(frmGameFind->grid.Rows, 32768);
  frmGameFind->requestHostList();
  request();
  host().deliver(std::string(32768, '[') + "-END-");
  EXPECT_THROW(passEvents(), RuntimeFault);
}

TEST_F(GameFinder, Q161AHostThatIsDownLeavesItsLastWord) {
  *frmGameFind;
  host().refuse();
  passEvents();
  EXPECT_EQ(status(), "Connecting to game find server...");
  EXPECT_TRUE(machine.messageBoxes.empty());
  frmGameFind->cmdRefresh.Click();
  list("[a|1|0|n|1|2]-END-");
  EXPECT_EQ(status(), "Done") << "Refresh starts anew";
}

TEST_F(GameFinder, Q161AHostThatClosesEarlyLeavesItsLastWord) {
  *frmGameFind;
  request();
  host().deliver("[a|1|0|n|1|2]");
  host().closeByServer();
  passEvents();
  EXPECT_EQ(status(), "Requesting list...");
  EXPECT_EQ(frmGameFind->hostCount, 0);
  EXPECT_EQ(frmGameFind->websock.State(), sckClosing);
}

TEST_F(GameFinder, AHostThatNeverEndsIsLeftAtAMebibyte) {
  *frmGameFind;
  request();
  const std::string portion(64 * 1024, '[');
  for (int i = 0; i < 16; ++i) host().deliver(portion);
  passEvents();
  EXPECT_EQ(frmGameFind->websock.State(), sckConnected);
  host().deliver("[");
  passEvents();
  EXPECT_EQ(frmGameFind->websock.State(), sckClosed);
  EXPECT_EQ(frmGameFind->hostBuffer.size(), 1024U * 1024U);
  EXPECT_EQ(status(), "Requesting list...");
  EXPECT_EQ(frmGameFind->hostCount, 0);
}

TEST_F(GameFinder, AnAnswerOfAWholeMebibyteIsRead) {
  *frmGameFind;
  request();
  const std::string records = "[a|1|0|n|1|2]-END-";
  host().deliver(std::string(1024 * 1024 - records.size(), 'x') + records + "and more");
  passEvents();
  EXPECT_EQ(status(), "Done");
  EXPECT_EQ(frmGameFind->hostCount, 1);
}

TEST_F(GameFinder, AnUnloadGivesTheFetchUp) {
  frmGameFind->Show();
  FrmGameFind& finder = *frmGameFind;
  request();
  HeadlessSocket& hostOfFinder = host();
  hostOfFinder.deliver("[a|1|bad|n|1|2]-END-");
  finder.closedByUser();
  EXPECT_EQ(finder.websock.State(), sckClosed);
  EXPECT_NO_THROW(passEvents());
}

class GameFinderChoice : public GameFinder {
 protected:
  GameFinderChoice() {
    frmConnect->Show();
    frmConnect->txtPlayerName.Text = "Ann";
    frmConnect->txtServerPassword.Text = "secret";
    frmConnect->selectColour(4);
  }
};

TEST_F(GameFinderChoice, Q272AServerThatAsksForAPasswordIsConnectedWithTheOneOfTheDialog) {
  list("[192.0.2.7|2010|0|friendly game|3|8][arena.test|3000|1||0|6]-END-");
  frmGameFind->Show();
  frmGameFind->grid.adoptCell(2, 4);
  frmGameFind->grid.DblClick();
  EXPECT_EQ(server().connects, (std::vector<std::pair<std::string, int>>{{"arena.test", 3000}}));
  EXPECT_EQ(netMan::playerName, "Ann");
  EXPECT_EQ(netMan::serverPassword, "secret");
  EXPECT_EQ(netMan::preferredColour, 4);
  EXPECT_FALSE(frmGameFind.isLoaded());
  EXPECT_FALSE(frmConnect.isLoaded());
  EXPECT_TRUE(machine.messageBoxes.empty()) << "nothing is asked";
  EXPECT_EQ(machine.modalForms, std::vector<std::string>{});
}

TEST_F(GameFinderChoice, Q272NoPasswordIsAskedForEvenIfThereIsNone) {
  frmConnect->txtServerPassword.Text = "";
  list("[arena.test|3000|1||0|6]-END-");
  frmGameFind->grid.DblClick();
  EXPECT_EQ(server().connects, (std::vector<std::pair<std::string, int>>{{"arena.test", 3000}}));
  EXPECT_EQ(netMan::serverPassword, "");
  EXPECT_TRUE(machine.messageBoxes.empty());
}

TEST_F(GameFinderChoice, TheFirstServerIsChosenUntilThePlayerChoosesAnother) {
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

TEST_F(GameFinderChoice, Q167TheFinderGoesAlsoIfTheConnectionIsRefused) {
  list("-END-");
  frmGameFind->Show();
  frmGameFind->grid.DblClick();
  EXPECT_FALSE(frmGameFind.isLoaded());
  // The same with a server in the list, and no name to log in with.
  list("[192.0.2.7|2010|0|n|3|8]-END-");
  frmConnect->txtPlayerName.Text = "";
  frmGameFind->grid.DblClick();
  EXPECT_EQ(machine.messageBoxes.back(), "Please enter a name for yourself");
  EXPECT_FALSE(frmGameFind.isLoaded());
}

TEST_F(GameFinderChoice, ADoubleClickBeforeTheListHasComeIsRefused) {
  frmGameFind->grid.DblClick();
  EXPECT_EQ(machine.messageBoxes, std::vector<std::string>{"Invalid server port number"});
  EXPECT_FALSE(frmGameFind.isLoaded());
}

}  // namespace
}  // namespace kelvora
