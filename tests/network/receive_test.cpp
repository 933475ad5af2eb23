#include <cstddef>
#include <random>

#include "base/fault.h"
#include "network/messageQueue.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

class Receive : public GameTest {
 protected:
  Receive() { frmMain->Visible = true; }

  std::vector<std::string> lines() {
    std::vector<std::string> texts;
    for (const ChatLine& line : modMain::world.chatLines) {
      if (!line.text.empty()) texts.insert(texts.begin(), line.text);
    }
    return texts;
  }
};

const std::string text1 = "\x80\xA2one\x81";
const std::string text2 = "\x80\xA2two\x81";
const std::string spawnDenied = "\x80\x99\x81";

using Lines = std::vector<std::string>;

TEST_F(Receive, SendsNothingUnlessConnected) {
  for (const int state : {0, 1, 2, 3, 4, 5, 6, 8, 9}) {
    server().setState(static_cast<SocketState>(state));
    netMan::sendMessage<wire::msgSpawnRequest>();
  }
  EXPECT_TRUE(server().sends.empty());
  EXPECT_TRUE(lines().empty());
  server().setState(sckConnected);
  netMan::sendMessage<wire::msgSpawnRequest>();
  EXPECT_EQ(server().sends, Lines{"\x80\x98\x81"});
}

TEST_F(Receive, FrameIsSentInOneCall) {
  server().setState(sckConnected);
  netMan::sendMessage<wire::msgChat>(-1, "hi");
  EXPECT_EQ(server().sends, (Lines{"\x80\x90-1\x82hi\x81"}));
}

TEST_F(Receive, TwoFramesInOneReadAreHandledInOrder) {
  netMan::receiveData(text1 + text2);
  EXPECT_EQ(lines(), (Lines{"one", "two"}));
  EXPECT_EQ(netMan::messageQueue.messageCount(), 0);
}

TEST_F(Receive, WholeFramesAreHandledAndTheIncompleteOneStays) {
  netMan::receiveData(text1 + text2 +
                      "\x80\xA2three\x81\x80\xA2"
                      "fo");
  EXPECT_EQ(lines(), (Lines{"one", "two", "three"}));
  EXPECT_EQ(netMan::messageQueue.messageCount(), 1);
}

TEST_F(Receive, Q063AFrameSplitInsideItsFieldsIsLost) {
  netMan::receiveData("\x80\xA2on");
  netMan::receiveData("e\x81");
  EXPECT_TRUE(lines().empty());
  EXPECT_EQ(netMan::messageQueue.messageCount(), 0) << "the rest is dropped under the id 'e'";
}

TEST_F(Receive, Q063TheRestOfASplitFrameCanBeTakenForAnotherMessage) {
  netMan::receiveData(
      "\x80\x90"
      "5\x82");
  netMan::receiveData("\xA2tail\x81");
  EXPECT_EQ(lines(), Lines{"tail"});
}

TEST_F(Receive, SplitRightAfterTheStartLosesNothing) {
  netMan::receiveData("\x80");
  EXPECT_EQ(netMan::messageQueue.messageCount(), 1);
  netMan::receiveData("\xA2one\x81");
  EXPECT_EQ(lines(), Lines{"one"});
}

TEST_F(Receive, Q064ASecondEndAppendsTheFrameAgain) {
  // The collected text is "¢one", its end, "x" and the second end. It follows the first "¢one" and its end.
  netMan::receiveData("\x80\xA2one\x81x\x81");
  EXPECT_EQ(lines(), Lines{"one\x81\xA2one\x81x"});
}

TEST_F(Receive, Q064TextBetweenFramesIsDroppedAtTheNextStart) {
  netMan::receiveData(text1 + "noise" + text2);
  EXPECT_EQ(lines(), (Lines{"one", "two"}));
}

TEST_F(Receive, Q061AnEndBeforeTheFirstFrameEndsTheClient) {
  EXPECT_THROW(netMan::receiveData("abc\x81"), RuntimeFault);
  netMan::receiveData(text1);
  netMan::receiveData("abc\x81");
  EXPECT_EQ(lines(), Lines{"one"});
  EXPECT_EQ(netMan::messageQueue.messageCount(), 0);
}

TEST_F(Receive, Q065AnEmptyFrameRepeatsTheLastIdWithoutFields) {
  netMan::receiveData("\x80");
  netMan::receiveData("\x81" + spawnDenied);
  EXPECT_EQ(machine.messageBoxes.size(), 1U) << "the empty frame came first, when the id was still 0";

  netMan::receiveData(spawnDenied + "\x80\x81");
  EXPECT_EQ(machine.messageBoxes.size(), 3U) << "the box is shown a second time";

  netMan::receiveData(text1 + "\x80\x81");
  EXPECT_EQ(lines(), Lines{"one"}) << "a handler that needs a field does nothing";
  EXPECT_EQ(netMan::messageQueue.messageCount(), 0);
}

TEST_F(Receive, Q065TheOldIdDoesNotOutliveTheCall) {
  netMan::receiveData(spawnDenied);
  netMan::receiveData("\x80\x81");
  EXPECT_EQ(machine.messageBoxes.size(), 1U);
}

TEST_F(Receive, Q062TheQueueOutlivesAConnection) {
  connect();
  serverSends("\x80");
  netMan::disconnectFromServer();
  connect();
  serverSends("\xA2one\x81");
  EXPECT_EQ(lines(), Lines{"one"});
}

TEST_F(Receive, PortionsOfOneEventAreOneRead) {
  connect();
  server().deliver(text1 + text2, 3);
  passEvents();
  EXPECT_EQ(lines(), (Lines{"one", "two"}));
}

TEST_F(Receive, EventsSplitAFrame) {
  connect();
  server().deliverInReads({"\x80\xA2on", "e\x81", text2});
  passEvents();
  EXPECT_EQ(lines(), Lines{"two"});
}

TEST_F(Receive, AnUnknownIdIsRemovedAndNothingElse) {
  netMan::receiveData("\x80\xA7what\x81" + text1);
  EXPECT_EQ(lines(), Lines{"one"});
  EXPECT_EQ(netMan::messageQueue.messageCount(), 0);
}

TEST_F(Receive, MessagesArrivingDuringABoxAreHandledBeforeItCloses) {
  machine.onMessageBox = [&](const std::string&) {
    netMan::receiveData(text1);
    EXPECT_EQ(lines(), (Lines{"two", "one"})) << "messages that the outer call hasn't reached come first";
  };
  netMan::receiveData(spawnDenied + text2);
  EXPECT_EQ(lines(), (Lines{"two", "one"}));
  EXPECT_EQ(netMan::messageQueue.messageCount(), 0);
}

TEST_F(Receive, Q066TheOuterCallRemovesByItsOwnNumber) {
  // The entry is "end, entry again, end". Without the last end byte it is still ready, so the call during the box takes
  // and removes it. The outer call then removes the entry that has moved into its place.
  bool first = true;
  machine.onMessageBox = [&](const std::string&) {
    if (!first) return;
    first = false;
    netMan::receiveData("\x80");
  };
  netMan::receiveData("\x80\x99\x81\x81");
  EXPECT_EQ(machine.messageBoxes.size(), 2U);
  EXPECT_EQ(netMan::messageQueue.messageCount(), 0) << "the started entry is gone with it";
  netMan::receiveData("\xA2one\x81");
  EXPECT_TRUE(lines().empty()) << "the bytes that should have completed it have no entry";
}

/// The queue exactly as in the rules: plain entries, all copied at every removal, always scanned from the first. Boxes
/// call `box`, which may receive more data.
struct SlowClient {
  std::vector<std::string> queue;  // element 0 stays unused
  std::size_t messageCount = 0;
  std::function<void(const std::string&)> box;

  void receiveData(const std::string& data) {
    std::string current;
    for (const char c : data) {
      if (c == '\x80') {
        ++messageCount;
        queue.resize(messageCount + 1);
        queue[messageCount].clear();
        current.clear();
      } else if (c == '\x81') {
        current += c;
        if (queue.empty()) raiseSubscriptOutOfRange();
        queue[messageCount] += current;
      } else {
        current += c;
      }
    }
    processMessages();
  }

  void processMessages() {
    int id = 0;
    std::size_t i = 0;
    while (i < messageCount) {
      ++i;
      if (queue[i].empty()) continue;
      if (queue[i].back() != '\x81') continue;
      queue[i].pop_back();
      const std::string entry = queue[i];
      if (!entry.empty()) id = static_cast<unsigned char>(entry[0]);
      if (id == 136 && !entry.empty()) box("Login denied: \n" + entry.substr(1, entry.find('\x82', 1) - 1));
      if (id == 153) box("Respawn request denied from server");
      removeMessage(i);
      i = 0;
    }
  }

  void removeMessage(std::size_t index) {
    std::vector<std::string> kept;
    for (std::size_t i = 1; i <= messageCount; ++i) {
      if (i != index) kept.push_back(queue[i]);
    }
    messageCount = 0;
    queue.assign(1, "");
    for (const std::string& text : kept) {
      ++messageCount;
      queue.resize(messageCount + 1);
      queue[messageCount] = text;
    }
  }
};

/// Feeds a script of reads. While a box is open, some of them arrive early, even in nested boxes.
template <class ReceiveData>
class Feeder {
 public:
  Feeder(std::vector<std::string> reads, ReceiveData receive) : reads_(std::move(reads)), receive_(receive) {}

  bool atEnd() const { return next_ == reads_.size(); }
  void feed() {
    const std::string& read = reads_[next_++];
    try {
      receive_(read);
    } catch (const RuntimeFault&) {
      boxes.push_back("fault");
    }
  }
  void box(const std::string& text) {
    boxes.push_back(text);
    if (depth_ == 4) return;
    ++depth_;
    if (++boxCount_ % 3 != 0 && !atEnd()) feed();
    if (boxCount_ % 5 == 0 && !atEnd()) feed();
    --depth_;
  }
  std::vector<std::string> boxes;

 private:
  std::vector<std::string> reads_;
  ReceiveData receive_;
  std::size_t next_ = 0;
  int depth_ = 0;
  int boxCount_ = 0;
};

TEST_F(Receive, MatchesTheSlowTwinUnderRandomSplitsAndBoxes) {
  std::mt19937 random(20'260);
  const std::string alphabet =
      "\x80\x80\x80\x81\x81\x81\x81\x82\x88\x88\x99\x99\xA8"
      "ab";
  for (int round = 0; round < 1500; ++round) {
    std::vector<std::string> reads(12);
    for (std::string& read : reads) {
      for (std::size_t length = random() % 14; length > 0; --length) read += alphabet[random() % alphabet.size()];
    }
    netMan::clear();
    machine.messageBoxes.clear();
    SlowClient slow;
    Feeder fastFeed(reads, [](const std::string& read) { netMan::receiveData(read); });
    Feeder slowFeed(reads, [&](const std::string& read) { slow.receiveData(read); });
    machine.onMessageBox = [&](const std::string& text) { fastFeed.box(text); };
    slow.box = [&](const std::string& text) { slowFeed.box(text); };
    while (!fastFeed.atEnd()) {
      fastFeed.feed();
      slowFeed.feed();
      ASSERT_EQ(fastFeed.boxes, slowFeed.boxes) << "round " << round;
      ASSERT_EQ(fastFeed.atEnd(), slowFeed.atEnd()) << "round " << round;
      ASSERT_EQ(netMan::messageQueue.messageCount(), static_cast<double>(slow.messageCount)) << "round " << round;
      for (std::size_t i = 1; i <= slow.messageCount; ++i) {
        ASSERT_EQ(netMan::messageQueue.text(i), slow.queue[i]) << "round " << round << " entry " << i;
      }
    }
  }
}

TEST_F(Receive, MoreEntriesThanSixteenBitsCanCountAreAllScanned) {
  netMan::receiveData(std::string(70'000, '\x80'));
  netMan::receiveData(text1);
  EXPECT_EQ(lines(), Lines{"one"});
  EXPECT_EQ(netMan::messageQueue.messageCount(), 70'000);
}

TEST_F(Receive, FloodOfEndBytesIsHandledInOnePass) {
  netMan::receiveData("\x80" + std::string("\xA7", 1) + std::string(300'000, '\x81'));
  EXPECT_EQ(netMan::messageQueue.messageCount(), 0);
}

}  // namespace
}  // namespace kelvora
