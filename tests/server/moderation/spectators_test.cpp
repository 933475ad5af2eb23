// Moderators see and remove spectators. Votes don't count them.

#include "tests/server/moderation/moderationTest.h"

namespace kelvora::server {
namespace {

class ModeratedSpectators : public ModerationTest {
 protected:
  ModeratedSpectators() : ModerationTest(watched()) {}

  void SetUp() override {
    login(ann, "Ann", "0");
    login(bob, "Bob", "1");
    arena.connected(eve, now, Role::spectator);
    say(eve, wire::msgLogin, {"Eve", "", "0", KELVORA_VERSION});
    becomeModerator(ann);
  }

 private:
  static ArenaRules watched() {
    ArenaRules rules = quietRules;
    rules.spectators = 2;
    return rules;
  }
};

TEST_F(ModeratedSpectators, AreListedForModeratorsAlone) {
  EXPECT_EQ(chat(ann, "!who").back(), "Watching: Eve, 192.0.2.5");
  EXPECT_EQ(chat(bob, "!who").size(), 2U);
}

TEST_F(ModeratedSpectators, CanBeKickedUnseen) {
  EXPECT_EQ(answerTo(ann, "!kick Eve bye"), "Kicked Eve, who was watching.");
  EXPECT_EQ(textsTo(eve), (std::vector<std::string>{"You have been kicked: bye"}));
  EXPECT_TRUE(got[bob].empty());
  EXPECT_FALSE(arena.isIn(eve));
  EXPECT_EQ(host.acts.back(), "moderator Ann (client 1, 192.0.2.1) on Eve (client 5, 192.0.2.5): !kick Eve bye");
}

TEST_F(ModeratedSpectators, AreBannedWithTheirNetwork) {
  host.networks[bob] = host.network(eve);
  EXPECT_EQ(chat(ann, "!ban Eve 2h noise").back(), "Banned Eve (192.0.2.5) until 2001-09-09 03:46 UTC.");
  EXPECT_FALSE(arena.isIn(eve));
  EXPECT_FALSE(arena.isIn(bob)) << "of the same network";
  arena.connected(eve, now, Role::spectator);
  say(eve, wire::msgLogin, {"Eve", "", "0", KELVORA_VERSION});
  EXPECT_EQ(got[eve].back().id, wire::msgLoginDenied);
}

TEST_F(ModeratedSpectators, AreExpelledWithABannedPlayer) {
  host.networks[eve] = host.network(bob);
  chat(ann, "!ban Bob");
  EXPECT_FALSE(arena.isIn(eve));
}

TEST_F(ModeratedSpectators, AreMuted) {
  chat(ann, "!mute Eve");
  EXPECT_TRUE(chat(eve, "hello").at(0).starts_with("Nobody gets your lines."));
}

TEST_F(ModeratedSpectators, DontCountInVotes) {
  chat(bob, "!vote restart");
  EXPECT_TRUE(all(ann, wire::msgRoundOver).empty());
  chat(ann, "!vote yes");
  EXPECT_EQ(all(ann, wire::msgRoundOver).size(), 1U) << "two of two players";
}

}  // namespace
}  // namespace kelvora::server
