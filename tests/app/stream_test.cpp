#include "platform/recording/stream.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/app/memorySink.h"

namespace kelvora {
namespace {

using namespace recording;

/// The contents of a recording that has these coordinates alone.
std::string contentsOf(const std::vector<float>& coordinates) {
  std::string contents;
  Writer writer(std::make_unique<MemorySink>(contents));
  for (const float coordinate : coordinates) writer.coordinate(coordinate, Plane::Across);
  writer.finish();
  return contents;
}

TEST(Reader, RefusesPlanesThatDontFitTogether) {
  // A block with a time and a record. Reading another record needs the next block, though the time is unread.
  std::string contents(
      "\1\1\0\0\0\0\0"
      "\7\5",
      9);
  Reader reader([&] { return std::exchange(contents, {}); });
  EXPECT_EQ(reader.byte(), 7);
  EXPECT_THROW(reader.byte(), Damaged);
}

TEST(Reader, RefusesABlockThatIsTooLarge) {
  std::string contents("\x81\x80\4\0\0\0\0\0\0", 9);  // 65537
  Reader reader([&] { return std::exchange(contents, {}); });
  EXPECT_THROW(reader.byte(), Damaged);
}

TEST(Reader, EndsBeforeABlockThatIsCutOff) {
  std::string contents(
      "\1\0\0\0\0\0\0"
      "\7"
      "\2\0\0\0\0\0\0"
      "\7",
      16);
  Reader reader([&] { return std::exchange(contents, {}); });
  EXPECT_EQ(reader.byte(), 7);
  EXPECT_TRUE(reader.isAtEnd());
}

TEST(Writer, SplitsWhatExceedsABlock) {
  const std::string text(3 * maxBlock + 5, 'x');
  std::string contents;
  {
    Writer writer(std::make_unique<MemorySink>(contents));
    writer.text(text);
    writer.number(300, Plane::Times);
  }
  Reader reader([&] { return std::exchange(contents, {}); });
  EXPECT_EQ(reader.text(maxText), text);
  EXPECT_EQ(reader.number(Plane::Times), 300U);
  EXPECT_TRUE(reader.isAtEnd());
}

TEST(Coordinates, ComeBackExactly) {
  // From the second to the third, the steps are whole only because a float is rounded.
  const std::vector<float> all = {15, 999'990, .03F, -.5F, -150'000, 1'000'000, 0};
  Reader reader(sourceOf(contentsOf(all)));
  for (const float coordinate : all) EXPECT_EQ(reader.coordinate(Plane::Across), coordinate);
}

TEST(Coordinates, FollowTheLastOneOfTheirPlane) {
  std::string contents;
  {
    Writer writer(std::make_unique<MemorySink>(contents));
    for (const float across : {150.0F, 165.0F}) {
      writer.coordinate(across, Plane::Across);
      writer.coordinate(3'000, Plane::Down);
    }
  }
  Reader reader(sourceOf(contents));
  for (const float across : {150.0F, 165.0F}) {
    EXPECT_EQ(reader.coordinate(Plane::Across), across);
    EXPECT_EQ(reader.coordinate(Plane::Down), 3'000);
  }
}

TEST(Coordinates, OfWholePixelsAreShort) {
  const std::size_t head = planeCount;
  // 31 pixels fit into one byte, 4095 into two, and half a pixel takes a whole number.
  EXPECT_EQ(contentsOf({31 * 15}).size(), head + 1);
  EXPECT_EQ(contentsOf({4'095 * 15}).size(), head + 2);
  EXPECT_EQ(contentsOf({7.5F}).size(), head + 5);
}

TEST(Coordinates, OutOfRangeAreDamage) {
  for (const float coordinate : {1'000'005.0F, -1'000'005.0F, 1'000'000.5F}) {
    Reader reader(sourceOf(contentsOf({coordinate})));
    EXPECT_THROW(reader.coordinate(Plane::Across), Damaged) << coordinate;
  }
}

TEST(Coordinates, OfAnUnknownCodeAreDamage) {
  Reader reader(sourceOf(std::string("\0\0\1\0\0\0\0\3", 8)));
  EXPECT_THROW(reader.coordinate(Plane::Across), Damaged);
}

}  // namespace
}  // namespace kelvora
