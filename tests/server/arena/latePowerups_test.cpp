// Newcomers learn of powerups that began before them.

#include "tests/server/arena/arenaTest.h"

namespace kelvora::server {
namespace {

class LatePowerups : public ArenaTest {
 protected:
  LatePowerups() : ArenaTest(quietRulesWithIncome(6'000)) {}

  /// Lets a player buy a powerup and start it.
  void use(ClientId client, PowerupSlot item) {
    const std::string slot = std::to_string(item);
    pass(1'000);  // pays for it
    say(client, wire::msgBuyRequest, {slot});
    say(client, wire::msgActivateRequest, {slot});
    ASSERT_TRUE(view(client).isRunning[indexOf(item)]);
  }
  void join(ClientId client, const std::string& name) {
    arena.connected(client, now);
    say(client, wire::msgLogin, {name, "", "9", KELVORA_VERSION});
  }
};

TEST_F(LatePowerups, AreShownToTheNewcomerAlone) {
  const std::int16_t node = login(ann, "Ann");
  login(bob, "Bob", "1");
  use(ann, shieldSlot);
  pass(5'000);
  got.clear();
  join(cat, "Cat");
  const auto position = [&](int id) {
    return std::ranges::find_if(got[cat], [&](const Message& message) { return message.id == id; }) - got[cat].begin();
  };
  EXPECT_EQ(all(cat, wire::msgPowerupOn), (std::vector<Fields>{{std::to_string(node), "0"}}));
  EXPECT_LT(position(wire::msgPlayerJoined), position(wire::msgPowerupOn)) << "clients must know the player";
  EXPECT_TRUE(all(bob, wire::msgPowerupOn).empty());
}

TEST_F(LatePowerups, EndOnTimeForTheNewcomer) {
  const std::int16_t node = login(ann, "Ann");
  use(ann, shieldSlot);
  const Millis begun = now;
  pass(5'000);
  join(cat, "Cat");
  got.clear();
  pass(begun + 14'999 - now);
  EXPECT_TRUE(all(cat, wire::msgPowerupOff).empty());
  pass(1);
  EXPECT_EQ(all(cat, wire::msgPowerupOff), (std::vector<Fields>{{std::to_string(node), "0"}}));
  EXPECT_TRUE(all(ann, wire::msgPowerupOff).empty()) << "her own client has timed it";
  got.clear();
  pass(40);
  EXPECT_TRUE(all(cat, wire::msgPowerupOff).empty());
}

TEST_F(LatePowerups, ThatHaveBegunAgainGoOn) {
  login(ann, "Ann");
  use(ann, laserSlot);
  const Millis begun = now;
  join(cat, "Cat");
  now = begun + 1'000;  // before the next tick
  say(ann, wire::msgBuyRequest, {"4"});
  say(ann, wire::msgActivateRequest, {"4"});
  got.clear();
  pass(40);
  EXPECT_TRUE(view(ann).isRunning[indexOf(laserSlot)]);
  EXPECT_TRUE(all(cat, wire::msgPowerupOff).empty());
}

TEST_F(LatePowerups, OfThoseWhoLeaveAreForgotten) {
  login(ann, "Ann");
  use(ann, shieldSlot);
  join(cat, "Cat");
  arena.disconnected(ann);
  got.clear();
  pass(20'000);
  EXPECT_TRUE(all(cat, wire::msgPowerupOff).empty());
}

}  // namespace
}  // namespace kelvora::server
