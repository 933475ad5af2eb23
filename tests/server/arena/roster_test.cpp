#include "server/arena/roster.h"

#include "tests/server/arena/pieces.h"
#include "tests/server/arena/recorder.h"

namespace kelvora::server {
namespace {

struct RosterTest : testing::Test {
  Recorder recorder;
  Roster roster{recorder};
  PendingCaptures pending;
};

TEST_F(RosterTest, FindsPlayersByClientAndByNode) {
  roster.join(playerAt(7, 0, 0));
  Player& nine = roster.join(playerAt(9, 0, 0));
  nine.node = 300;
  EXPECT_EQ(roster.find(9), &nine);
  EXPECT_EQ(roster.findNode(300), &nine);
  EXPECT_EQ(roster.find(8), nullptr);
  EXPECT_EQ(roster.findNode(9), nullptr);
}

TEST_F(RosterTest, DistinguishesPeopleFromBots) {
  EXPECT_FALSE(roster.hasPeople());
  Player bot = playerAt(1, 0, 0);
  bot.client = firstBotClient;
  roster.join(bot);
  EXPECT_FALSE(roster.hasPeople());
  EXPECT_TRUE(roster.hasBots());
  roster.join(playerAt(1, 0, 0));
  EXPECT_TRUE(roster.hasPeople());
}

TEST_F(RosterTest, NodesWrapAroundAndSkipThoseInUse) {
  EXPECT_EQ(roster.nextNode(), 1);
  roster.join(playerAt(1, 0, 0));
  for (int node = 2; node <= 32'767; ++node) EXPECT_EQ(roster.nextNode(), node);
  EXPECT_EQ(roster.nextNode(), 2) << "1 is in use, and 0 means nobody";
}

TEST_F(RosterTest, ALeaverKeepsColourAndNodeUntilTheCaptureHasLanded) {
  roster.join(playerAt(1, 0, 0));
  roster.join(playerAt(2, 0, 0));
  pending.add(1, 2, spotAt(5, 5), 1'000, 0);
  roster.leave(2, pending);
  EXPECT_EQ(roster.find(2), nullptr);
  EXPECT_FALSE(roster.isColourFree(yellowPlayer));
  EXPECT_TRUE(roster.isColourFree(greenPlayer));
  pending.prune(3'999);
  roster.releaseLeavers(pending);
  EXPECT_TRUE(recorder.got.empty());
  EXPECT_EQ(roster.leavers().size(), 1U);
  pending.prune(4'000);
  roster.releaseLeavers(pending);
  EXPECT_EQ(recorder.got, (std::map<ClientId, std::vector<Message>>{{1, {{wire::msgPlayerLeft, {"2"}}}}}));
  EXPECT_TRUE(roster.isColourFree(yellowPlayer));
}

TEST_F(RosterTest, LeaversStillOccupyTheirColours) {
  for (ClientId client = 1; client <= 6; ++client) roster.join(playerAt(client, 0, 0));
  EXPECT_TRUE(roster.isFull());
  pending.add(1, 2, spotAt(5, 5), 1'000, 0);
  roster.leave(2, pending);
  EXPECT_FALSE(roster.isFull());
  EXPECT_FALSE(roster.hasFreeColour());
  roster.leave(3, pending);
  EXPECT_TRUE(roster.hasFreeColour());
}

}  // namespace
}  // namespace kelvora::server
