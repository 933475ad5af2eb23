#include "app/player/marks.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "tests/support/gameTest.h"

namespace kelvora::player {
namespace {

class MarkFinderTest : public GameTest {
 protected:
  std::vector<std::string> found() {
    std::vector<std::string> texts;
    for (const Mark& mark : finder.find(1000)) {
      const std::string capture = mark.isOwn ? "own capture" : "capture";
      texts.push_back(mark.kind == Mark::Kind::Capture ? capture + mark.text : mark.text);
    }
    return texts;
  }
  using Texts = std::vector<std::string>;
  MarkFinder finder;
};

TEST_F(MarkFinderTest, ACaptureIsMarkedOnceAndWithoutNames) {
  login();
  auto& world = modMain::world;
  clsPlayer& bob = world.opponents.at(static_cast<std::size_t>(join(8, 1, "Bob")));
  clsPlayer& eve = world.opponents.at(static_cast<std::size_t>(join(9, 2, "Eve")));
  found();
  bob.kills = 1;
  eve.alive = false;
  EXPECT_EQ(found(), Texts{"capture"});
  EXPECT_EQ(found(), Texts{});
  world.localPlayer.alive = false;
  EXPECT_EQ(found(), Texts{"own capture"});
  eve.alive = true;
  EXPECT_EQ(found(), Texts{});
  eve.isConnected = false;
  EXPECT_EQ(found(), Texts{});
}

TEST_F(MarkFinderTest, FindsEachNewLineOnce) {
  printChat("one", LineType::PublicChat);
  found();
  printChat("two", LineType::PublicChat);
  printChat("two", LineType::PublicChat);
  EXPECT_EQ(found(), (Texts{"two", "two"}));
  EXPECT_EQ(found(), Texts{});
}

}  // namespace
}  // namespace kelvora::player
