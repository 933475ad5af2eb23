#include <gtest/gtest.h>

#include "base/fault.h"
#include "tests/frontend/gameFinderTest.h"

namespace kelvora {
namespace {

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

TEST_F(GameFinder, TruncatedRecordLeavesItsLaterFieldsEmpty) {
  list("[127.0.0.1][arena.test|2010|1][other.test|2011|0|7 friends]-END-");
  ASSERT_EQ(frmGameFind->hostCount, 3);
  EXPECT_EQ(entry(1).address, "127.0.0.1");
  EXPECT_EQ(entry(1).port, 0) << "the address isn't taken as the port";
  EXPECT_EQ(entry(2).port, 2010);
  EXPECT_TRUE(entry(2).passwordRequired);
  EXPECT_EQ(entry(2).notes, "") << "the flag isn't taken as the note";
  EXPECT_EQ(entry(3).notes, "7 friends");
  EXPECT_EQ(entry(3).players, 0) << "the note isn't taken as the number of players";
}

TEST_F(GameFinder, ShowsOneRowPerServerBelowTheHeading) {
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

TEST_F(GameFinder, EmptyListShowsOnlyTheHeading) {
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

TEST_F(GameFinder, Q281DataBeyondFortyNineReadsWaitsForMore) {
  *frmGameFind;
  request();
  // 13 bytes per read: the mark starts in the 49th read and ends in the 50th.
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
  for (std::size_t at = 0; at < mark.size(); ++at) {
    frmGameFind->requestHostList();
    request();
    host().deliver("[a|1|0|n|1|2]" + mark.substr(0, at));
    passEvents();
    EXPECT_EQ(status(), "Requesting list...") << at;
    host().deliver(mark.substr(at));
    passEvents();
    EXPECT_EQ(status(), "Done") << at;
    EXPECT_EQ(frmGameFind->hostCount, 1);
  }
  frmGameFind->requestHostList();
  request();
  for (const char c : mark) {
    host().deliver(std::string(1, c));
    passEvents();
  }
  EXPECT_EQ(status(), "Done");
}

TEST_F(GameFinder, TextAfterTheEndMarkIsParsedToo) {
  list("-END-[a|1|0|n|1|2]");
  EXPECT_EQ(frmGameFind->hostCount, 1);
}

TEST_F(GameFinder, ASeventhFieldIsDropped) {
  list("[a|1|0|n|3|8|more]-END-");
  EXPECT_EQ(rows(), (Rows{heading, {"a", "1", "open", "3 / 8", "n"}}));
}

TEST_F(GameFinder, RecordOfFiveFieldsHasAMaximumOfZero) {
  list("[a|1|0|n|3]-END-");
  EXPECT_EQ(entry(1).players, 3);
  EXPECT_EQ(entry(1).maxPlayers, 0);
}

TEST_F(GameFinder, CharactersBeforeTheFirstRecordAreIgnored) {
  list("a|b]c|d|e]f[a|1|0|n|3|8]-END-");
  EXPECT_EQ(rows(), (Rows{heading, {"a", "1", "open", "3 / 8", "n"}}));
}

TEST_F(GameFinder, Q163ABracketInTheHeadersBeginsARecord) {
  list("HTTP/1.1 200 OK\r\nServer: x [y]\r\n\r\n[a|1|0|n|1|2]-END-");
  ASSERT_EQ(frmGameFind->hostCount, 2);
  EXPECT_EQ(entry(1).address, "y");
  EXPECT_EQ(entry(2).port, 1);
}

TEST_F(GameFinder, Q164TextAfterARecordIsPrefixedToTheNextAddress) {
  list("[a|1|0|n|1|2] and [b|1|0|n|1|2]-END-");
  EXPECT_EQ(entry(1).address, "a");
  EXPECT_EQ(entry(2).address, " and b");
}

TEST_F(GameFinder, Q164LineFeedsStayButReturnsAndCode20AreSkipped) {
  list(
      "[a|1|0|n\r\x14"
      "n|1|2]\r\n[b\x14|1|0|n|1|2]\r\n-END-");
  EXPECT_EQ(entry(1).notes, "nn");
  EXPECT_EQ(entry(2).address, "\nb");
}

TEST_F(GameFinder, Q164ASecondClosingBracketReadsTheLastFieldAgain) {
  list("[a|1|0|n|1|2]7]-END-");
  EXPECT_EQ(entry(1).maxPlayers, 7);
}

TEST_F(GameFinder, Q165ANonNumericFlagIsAFault) {
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

TEST_F(GameFinder, MoreRecordsThanSixteenBitsCanCountAreAFault) {
  list(std::string(32767, '[') + "-END-");
  EXPECT_EQ(frmGameFind->hostCount, 32767);
  EXPECT_EQ(frmGameFind->grid.Rows, 32768);
  frmGameFind->requestHostList();
  request();
  host().deliver(std::string(32768, '[') + "-END-");
  EXPECT_THROW(passEvents(), RuntimeFault);
}

TEST_F(GameFinder, Q161AnUnreachableHostKeepsTheLastStatus) {
  *frmGameFind;
  host().refuse();
  passEvents();
  EXPECT_EQ(status(), "Connecting to game find server...");
  EXPECT_TRUE(machine.messageBoxes.empty());
  frmGameFind->cmdRefresh.Click();
  list("[a|1|0|n|1|2]-END-");
  EXPECT_EQ(status(), "Done") << "Refresh starts anew";
}

TEST_F(GameFinder, Q161AHostThatClosesEarlyKeepsTheLastStatus) {
  *frmGameFind;
  request();
  host().deliver("[a|1|0|n|1|2]");
  host().closeByServer();
  passEvents();
  EXPECT_EQ(status(), "Requesting list...");
  EXPECT_EQ(frmGameFind->hostCount, 0);
  EXPECT_EQ(frmGameFind->websock.State(), sckClosing);
}

TEST_F(GameFinder, EndlessAnswerIsCutOffAtAMebibyte) {
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

TEST_F(GameFinder, UnloadingAbortsTheFetch) {
  frmGameFind->Show();
  FrmGameFind& finder = *frmGameFind;
  request();
  HeadlessSocket& hostOfFinder = host();
  hostOfFinder.deliver("[a|1|bad|n|1|2]-END-");
  finder.closedByUser();
  EXPECT_EQ(finder.websock.State(), sckClosed);
  EXPECT_NO_THROW(passEvents());
}

}  // namespace
}  // namespace kelvora
