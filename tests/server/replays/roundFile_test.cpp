#include "server/replays/roundFile.h"

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>

#include "protocol/frames.h"
#include "server/replays/compression.h"

namespace kelvora::server {
namespace {

std::string positionOf(std::int16_t node, const std::string& x) {
  return wire::toClient<wire::msgPosition>(node, wire::NumberText{x}, wire::NumberText{".5"});
}

std::string joined(std::int16_t node, std::int16_t colour) {
  return wire::toClient<wire::msgPlayerJoined>(node, colour, "Ann", wire::NumberText{"1"}, wire::NumberText{"2"}, 1, 3);
}

Moments someRound() {
  Moments round;
  round.add(0, joined(1, 0));
  round.add(40, positionOf(1, "100"));
  round.add(40, positionOf(1, "200"));
  round.add(200'000, wire::toClient<wire::msgRoundOver>("Ann wins."));
  return round;
}

/// Why a file is refused; empty if it isn't.
std::string refusal(const std::string& file) {
  try {
    readRound(file);
    return {};
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

std::string fileWith(const std::string& frame) {
  Moments round;
  round.add(5, frame);
  return roundFile(round);
}

TEST(RoundFile, HoldsFramesAndTheirTimes) {
  const Moments round = readRound(roundFile(someRound()));
  Moments::Reader reader(round.bytes());
  const auto expect = [&](Millis at, const std::string& frame) {
    const auto moment = reader.next();
    ASSERT_TRUE(moment);
    EXPECT_EQ(moment->at, at);
    EXPECT_EQ(moment->frame, frame);
  };
  expect(0, joined(1, 0));
  expect(40, positionOf(1, "100"));
  expect(40, positionOf(1, "200"));
  expect(200'000, wire::toClient<wire::msgRoundOver>("Ann wins."));
  EXPECT_TRUE(reader.isAtEnd());
  EXPECT_FALSE(reader.next());
}

TEST(RoundFile, OfAnotherKindOrVersionIsRefused) {
  EXPECT_EQ(refusal(""), "it holds no recorded round");
  EXPECT_EQ(refusal("kelvora round\n"), "it holds no recorded round");
  EXPECT_EQ(refusal("kelvora recording\n\1"), "it is a game's recording, which kelvora-replay shows");
  std::string newer = roundFile(someRound());
  newer[14] = 2;
  EXPECT_EQ(refusal(newer), "its format 2 needs another version of the server");
}

TEST(RoundFile, CutAnywhereIsRefused) {
  const std::string file = roundFile(someRound());
  ASSERT_EQ(refusal(file), "");
  for (std::size_t size = 0; size < file.size(); ++size) EXPECT_NE(refusal(file.substr(0, size)), "") << size;
  EXPECT_NE(refusal(file + "x"), "");
}

TEST(RoundFile, WithChangedBytesIsRefusedOrSound) {
  std::mt19937 random(3);
  const std::string plain = someRound().bytes();
  const std::string head = roundFile({}).substr(0, 15);
  int refused = 0;
  for (int i = 0; i < 20'000; ++i) {
    std::string bytes = plain;
    for (int changes = 1 + static_cast<int>(random() % 3); changes > 0; --changes) {
      bytes[random() % bytes.size()] = static_cast<char>(random());
    }
    if (!refusal(head + compressed(bytes)).empty()) ++refused;
  }
  EXPECT_GT(refused, 5'000);
}

TEST(RoundFile, WithOtherMessagesThanARoundsIsRefused) {
  EXPECT_EQ(refusal(fileWith(joined(1, 5))), "");
  for (const std::string& frame :
       {joined(0, 5), joined(-1, 5), joined(1, 6), joined(1, -1), wire::toClient<wire::msgRespawn>(-1),
        wire::toClient<wire::msgAliveState>(1, 1), wire::toClient<wire::msgLoginDenied>("no"),
        wire::toClient<wire::msgLoginAccepted>(1, 1, wire::NumberText{"1"}, wire::NumberText{"1"}),
        wire::toClient<wire::msgPowerupOn>(1, 6),
        wire::toClient<wire::msgTailCapture>(1, 0, wire::NumberText{"1"}, wire::NumberText{"1"}), positionOf(1, "x"),
        positionOf(1, "1\x80"), positionOf(1, "1\x81"), positionOf(1, "1\x82"),
        wire::toClient<wire::msgServerText>(std::string(5'000, 'x')), std::string("\x80\x86"), std::string("\x80\x81"),
        std::string("x\x86")}) {
    EXPECT_EQ(refusal(fileWith(frame)), "it has a message that no round contains") << frame;
  }
}

TEST(RoundFile, IsBounded) {
  const std::string head = roundFile({}).substr(0, 15);
  EXPECT_EQ(refusal(head + compressed(std::string(Moments::maxSize + 1, '\0'))), "it is damaged or too large");
  Moments round;
  const std::string line = wire::toClient<wire::msgServerText>(std::string(4'000, 'x'));
  for (std::size_t i = 0; i <= Moments::maxSize / line.size(); ++i) round.add(1, line);
  EXPECT_LE(round.bytes().size(), Moments::maxSize);
  EXPECT_EQ(refusal(roundFile(round)), "");
  // A time and the frame's length take one byte and four.
  constexpr std::size_t room = Moments::maxSize - 5;
  Moments full;
  full.add(1, std::string(room + 1, 'x'));
  EXPECT_TRUE(full.bytes().empty());
  full.add(1, std::string(room, 'x'));
  EXPECT_EQ(full.bytes().size(), Moments::maxSize);
  Moments late;
  late.add(Moments::maxLength + 1, line);
  EXPECT_TRUE(late.bytes().empty());
}

TEST(RoundFile, NumbersBeyondTheirRangeEndIt) {
  const std::string endless(12, '\xFF');
  EXPECT_FALSE(Moments::Reader(endless).next());
  EXPECT_FALSE(Moments::Reader("\1\5abc").next()) << "a frame that is cut";
  EXPECT_FALSE(Moments::Reader("\x80\x80\x80\x80\10\1a").next()) << "2^31";
  const auto last = Moments::Reader("\xFF\xFF\xFF\xFF\7\1a").next();
  ASSERT_TRUE(last);
  EXPECT_EQ(last->at, 2'147'483'647);
  const auto moment = Moments::Reader("\x81\1\1a").next();
  ASSERT_TRUE(moment);
  EXPECT_EQ(moment->at, 129);
  EXPECT_EQ(moment->frame, "a");
}

}  // namespace
}  // namespace kelvora::server
