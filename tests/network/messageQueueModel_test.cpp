// Compares the queue of received messages with a twin that follows the protocol's rules literally, entry by entry and
// byte by byte, for thousands of random streams that are split anywhere, with more reads arriving during message boxes.

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <stdexcept>

#include "base/fault.h"
#include "network/messageQueue.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

using Pieces = std::vector<std::string>;

constexpr char start = '\x80';
constexpr char end = '\x81';
constexpr char separator = '\x82';
constexpr int spawnDeniedId = 0x99;
constexpr int serverText = 0xA2;

/// The input of both sides, and their results.
struct Reads {
  Pieces outer;
  Pieces whileBoxStands;  ///< one per box, in order; an empty one means no read
  std::size_t nextInner = 0;
};

/// Arrays from 0 whose element 0 is unused, copied whole at each removal and scanned from the front after each message.
class LiteralQueue {
 public:
  explicit LiteralQueue(Reads reads) : reads_(std::move(reads)) {}

  void receive(const std::string& data) {
    std::string current;
    for (const char byte : data) {
      if (byte == start) {
        messageCount += 1;
        messageQueue.resize(messageCount + 1);
        messageQueue[messageCount] = "";
        current = "";
      } else if (byte == end) {
        current += byte;
        messageQueue.at(messageCount) += current;  // there is no array before the first start
      } else {
        current += byte;
      }
    }
    process();
  }

  std::size_t messageCount = 0;
  Pieces messageQueue;
  Pieces shown;  ///< lines and boxes, in order

 private:
  void process() {
    std::size_t i = 0;
    int id = 0;
    while (i < messageCount) {
      ++i;
      std::string& entry = messageQueue[i];
      if (entry.empty() || entry.back() != end) continue;
      entry.pop_back();
      Pieces fields;
      if (!entry.empty()) {  // an empty text has no fields and no first byte, so the previous id stays
        fields.emplace_back();
        for (const char byte : entry) {
          if (byte == separator) {
            fields.emplace_back();
          } else {
            fields.back() += byte;
          }
        }
        fields[0] = fields[0].substr(std::min<std::size_t>(1, fields[0].size()));
        id = static_cast<unsigned char>(entry.front());
      }
      handle(id, fields);
      remove(i);
      i = 0;
    }
  }

  void handle(int id, const Pieces& fields) {
    if (id == serverText && !fields.empty()) shown.push_back("line " + fields[0]);
    if (id != spawnDeniedId) return;
    shown.emplace_back("box");
    if (reads_.nextInner == reads_.whileBoxStands.size()) return;
    const std::string inner = reads_.whileBoxStands[reads_.nextInner++];
    if (!inner.empty()) receive(inner);
  }

  void remove(std::size_t index) {
    Pieces kept;
    for (std::size_t i = 1; i <= messageCount; ++i) {
      if (i != index) kept.push_back(messageQueue[i]);
    }
    messageCount = 0;
    messageQueue.assign(1, "");
    for (const std::string& text : kept) {
      messageCount += 1;
      messageQueue.resize(messageCount + 1);
      messageQueue[messageCount] = text;
    }
  }

  Reads reads_;
};

/// Builds frames and garbage, split at random positions.
class Streams {
 public:
  explicit Streams(std::uint32_t seed) : random_(seed) {}

  Reads next() {
    std::string stream;
    if (below(20) > 0) stream = start;
    for (int i = below(30); i >= 0; --i) stream += token();
    Reads reads;
    while (!stream.empty()) {
      const std::size_t size = static_cast<std::size_t>(below(below(3) == 0 ? 40 : 8)) + 1;
      reads.outer.push_back(stream.substr(0, size));
      stream.erase(0, size);
    }
    for (int i = below(8); i > 0; --i) {
      std::string inner;
      for (int j = below(6); j > 0; --j) inner += token();
      reads.whileBoxStands.push_back(inner);
    }
    return reads;
  }

 private:
  int below(int limit) { return std::uniform_int_distribution(0, limit - 1)(random_); }
  std::string token() {
    switch (below(10)) {
      case 0:
        return {start};
      case 1:
      case 2:
        return {end};
      case 3:
        return {separator};
      case 4:
        return {static_cast<char>(spawnDeniedId)};
      case 5:
        return {start, static_cast<char>(spawnDeniedId), end};
      case 6:
        return {start, static_cast<char>(serverText)};
      case 7:
        return std::string{start, static_cast<char>(serverText)} + "t" + std::to_string(++texts_) + end;
      case 8:
        return "t" + std::to_string(++texts_);
      default:
        return {start, end};
    }
  }

  std::mt19937 random_;
  int texts_ = 0;
};

class MessageQueueModel : public GameTest {
 protected:
  /// True if both have ended with the fault of an end byte before any frame.
  bool expectSameRead(LiteralQueue& literal, const std::string& piece) {
    bool literalFails = false;
    bool gameFails = false;
    try {
      literal.receive(piece);
    } catch (const std::out_of_range&) {
      literalFails = true;
    }
    try {
      netMan::receiveData(piece);
    } catch (const RuntimeFault&) {
      gameFails = true;
    }
    EXPECT_EQ(gameFails, literalFails);
    return literalFails;
  }

  /// Compares entry by entry. Of the lines, the console keeps only the last ones.
  void expectSame(const LiteralQueue& literal) {
    const MessageQueue& queue = netMan::messageQueue;
    ASSERT_EQ(queue.messageCount(), static_cast<double>(literal.messageCount));
    for (std::size_t i = 1; i <= literal.messageCount; ++i) EXPECT_EQ(queue.text(i), literal.messageQueue[i]) << i;
    Pieces lines;
    std::size_t boxes = 0;
    for (const std::string& shown : literal.shown) {
      if (shown == "box") {
        ++boxes;
      } else {
        lines.push_back(shown.substr(5));
      }
    }
    EXPECT_EQ(machine.messageBoxes.size(), boxes);
    for (std::size_t i = 0; i < std::min(lines.size(), modMain::world.chatLines.size()); ++i) {
      EXPECT_EQ(modMain::world.chatLines[i].text, lines[lines.size() - 1 - i]) << i;
    }
  }
};

TEST_F(MessageQueueModel, MatchesTheReferenceQueueForThousandsOfStreams) {
  std::size_t handled = 0;
  std::size_t nested = 0;
  std::size_t faults = 0;
  for (std::uint32_t seed = 1; seed <= 5'000; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    netMan::clear();
    modMain::world.chatLines = {};
    machine.messageBoxes.clear();
    const Reads reads = Streams(seed).next();
    LiteralQueue literal(reads);
    std::size_t inner = 0;
    machine.onMessageBox = [&](const std::string&) {
      if (inner == reads.whileBoxStands.size()) return;
      const std::string piece = reads.whileBoxStands[inner++];
      if (piece.empty()) return;
      ++nested;
      netMan::receiveData(piece);
    };
    for (const std::string& piece : reads.outer) {
      if (expectSameRead(literal, piece)) {
        ++faults;
        break;
      }
      expectSame(literal);
      if (HasFailure()) return;
    }
    handled += literal.shown.size();
  }
  // The streams cover all of these.
  EXPECT_GT(handled, 10'000U);
  EXPECT_GT(nested, 1'000U);
  EXPECT_GT(faults, 10U);
}

}  // namespace
}  // namespace kelvora
