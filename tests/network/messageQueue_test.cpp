#include "network/messageQueue.h"

#include <gtest/gtest.h>

#include "base/fault.h"

namespace kelvora {
namespace {

TEST(MessageQueue, Q061AnEndBeforeTheFirstStartIsAFault) {
  MessageQueue queue;
  EXPECT_THROW(queue.append("\x81"), RuntimeFault);
  EXPECT_EQ(queue.messageCount(), 0);
}

TEST(MessageQueue, Q061AnEndAfterTheLastEntryIsDropped) {
  MessageQueue queue;
  queue.startEntry();
  queue.append("\xA2\x81");
  queue.removeMessage(queue.takeFirstReady()->index);
  EXPECT_EQ(queue.messageCount(), 0);
  queue.append("\x81");
  EXPECT_EQ(queue.messageCount(), 0);
  EXPECT_FALSE(queue.takeFirstReady());
}

TEST(MessageQueue, UnfinishedEntriesAreSkippedAndStay) {
  MessageQueue queue;
  queue.startEntry();
  queue.startEntry();
  queue.startEntry();
  queue.append("abc\x81");
  const auto taken = queue.takeFirstReady();
  ASSERT_TRUE(taken);
  EXPECT_EQ(taken->index, 3U);
  EXPECT_EQ(taken->text, "abc");
  EXPECT_EQ(queue.text(3), "abc") << "the entry being handled keeps its number";
  queue.removeMessage(3);
  EXPECT_EQ(queue.messageCount(), 2);
  queue.append("late\x81");
  EXPECT_EQ(queue.takeFirstReady()->index, 2U) << "the newest entry can still be completed";
}

TEST(MessageQueue, EntryBeingHandledCanBecomeReadyAgain) {
  MessageQueue queue;
  queue.startEntry();
  queue.append("a\x81");
  EXPECT_EQ(queue.takeFirstReady()->text, "a");
  EXPECT_FALSE(queue.takeFirstReady());
  queue.append("b\x81");
  EXPECT_EQ(queue.takeFirstReady()->text, "ab");
  EXPECT_FALSE(queue.takeFirstReady());
  EXPECT_EQ(queue.text(1), "ab") << "parked for the second time";
}

TEST(MessageQueue, RemovesByNumberEvenBeforeEntriesBeingHandled) {
  MessageQueue queue;
  for (const char* text : {"", "x\x81", "", "y\x81"}) {
    queue.startEntry();
    if (*text) queue.append(text);
  }
  EXPECT_EQ(queue.takeFirstReady()->index, 2U);
  EXPECT_EQ(queue.takeFirstReady()->index, 4U);
  queue.removeMessage(1);
  EXPECT_EQ(queue.messageCount(), 3);
  EXPECT_EQ(queue.text(1), "x");
  EXPECT_EQ(queue.text(2), "");
  EXPECT_EQ(queue.text(3), "y");
  queue.removeMessage(4);
  queue.removeMessage(0);
  EXPECT_EQ(queue.messageCount(), 3);
  EXPECT_THROW(queue.text(0), RuntimeFault);
  EXPECT_THROW(queue.text(4), RuntimeFault);
}

TEST(MessageQueue, LongEntryKeepsItsFirstMebibyteAndItsEndByte) {
  MessageQueue queue;
  queue.startEntry();
  std::string text(MessageQueue::entryLimit + 5, 'x');
  text += '\x81';
  queue.append(text);
  EXPECT_EQ(queue.text(1).size(), MessageQueue::entryLimit + 1);
  for (int i = 0; i < 1000; ++i) queue.append("more\x81");
  EXPECT_EQ(queue.text(1).size(), MessageQueue::entryLimit + 1);
  const auto taken = queue.takeFirstReady();
  ASSERT_TRUE(taken);
  EXPECT_EQ(taken->text, std::string(MessageQueue::entryLimit, 'x'));
}

TEST(MessageQueue, AnEntryOfExactlyTheLimitIsWhole) {
  MessageQueue queue;
  queue.startEntry();
  queue.append(std::string(MessageQueue::entryLimit, 'x') + '\x81');
  EXPECT_EQ(queue.takeFirstReady()->text.size(), MessageQueue::entryLimit);
}

TEST(MessageQueue, TextBeyondTheTotalIsDropped) {
  MessageQueue queue;
  const std::string half = std::string(MessageQueue::entryLimit / 2 - 1, 'x') + '\x81';
  for (int i = 0; i < 64; ++i) {
    queue.startEntry();
    queue.append(half);
  }
  queue.startEntry();
  queue.append("one too many\x81");
  EXPECT_EQ(queue.text(65), "");
  for (int i = 0; i < 64; ++i) queue.removeMessage(queue.takeFirstReady()->index);
  EXPECT_FALSE(queue.takeFirstReady());
  queue.append("room again\x81");
  EXPECT_EQ(queue.takeFirstReady()->text, "room again");
}

TEST(MessageQueue, RemovedEntriesFreeExactlyTheirSpace) {
  MessageQueue queue;
  const std::string full = std::string(MessageQueue::entryLimit - 1, 'x') + '\x81';
  constexpr std::size_t fitting = MessageQueue::totalLimit / MessageQueue::entryLimit;
  for (int round = 0; round < 2; ++round) {
    for (std::size_t i = 0; i <= fitting; ++i) {
      queue.startEntry();
      queue.append(full);
    }
    for (std::size_t i = 1; i <= fitting; ++i) ASSERT_EQ(queue.text(i).size(), full.size()) << round << " " << i;
    EXPECT_EQ(queue.text(fitting + 1), "") << "the total is used up";
    for (std::size_t i = 0; i < fitting; ++i) queue.removeMessage(queue.takeFirstReady()->index);
    queue.removeMessage(1);
    ASSERT_EQ(queue.messageCount(), 0);
  }
}

// If the cost grew with the parked entries, this would take about ten billion steps.
TEST(MessageQueue, ParkedEntriesCostNothing) {
  MessageQueue queue;
  for (int i = 0; i < 500'000; ++i) queue.startEntry();
  for (int i = 0; i < 50'000; ++i) {
    queue.startEntry();
    queue.append("z\x81");
    const auto taken = queue.takeFirstReady();
    ASSERT_TRUE(taken);
    ASSERT_EQ(taken->index, 500'001U);
    queue.removeMessage(taken->index);
  }
  EXPECT_EQ(queue.messageCount(), 500'000);
}

}  // namespace
}  // namespace kelvora
