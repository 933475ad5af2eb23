#include "server/arena/names.h"

#include <random>
#include <set>

#include "base/codePage.h"
#include "tests/server/arena/arenaTest.h"

namespace kelvora::server {
namespace {

std::string bytes(const char* utf8) { return codePageFromUtf8(utf8).value(); }

TEST(Names, ThatLookAlikeHaveTheSameSkeleton) {
  for (const char* name : {"ANN", "ann", " A n n ", "A.n-n", "_Ann_", "\"Ann\"", "Änn", "@nn", "ªñn", "Ann\u00A0",
                           "A\u00ADnn", "“Ann”", "Ann…"}) {
    EXPECT_EQ(skeletonOf(bytes(name)), "ann") << name;
  }
  EXPECT_EQ(skeletonOf("Bill"), skeletonOf("B1|I"));
  EXPECT_EQ(skeletonOf("Bill"), skeletonOf(bytes("8ïl¡")));
  EXPECT_EQ(skeletonOf("Moss"), skeletonOf("rn0$5"));
  EXPECT_EQ(skeletonOf("Otto"), skeletonOf(bytes("0ttØ")));
  EXPECT_EQ(skeletonOf("Wim"), skeletonOf("vVlrn"));
}

TEST(Names, ThatLookDifferentHaveDifferentSkeletons) {
  std::set<std::string> skeletons;
  for (const char* name : {"Ann", "Anne", "Bob", "Rob", "Cat", "Kat", "Ann 2", "Ann 3", "Ann 22", "Zoe", "Max"}) {
    EXPECT_TRUE(skeletons.insert(skeletonOf(name)).second) << name;
  }
}

TEST(Names, AreShownWithoutInvisibleLetters) {
  EXPECT_EQ(visibleName(bytes("\u00A0 Ann \u00A0 \u00AD of\u00ADten  ")), "Ann often");
  EXPECT_EQ(visibleName(bytes("\u00A0\u00AD ")), "");
}

TEST(Names, ThatLookLikeTheServersAreRefused) {
  for (const char* name : {"Server", "SERVER", " s e r v e r ", "5erver", "Server 1", "The Server", "Kelvora",
                           "-=Admin=-", "Adm1n", "Moderator", "Consoie", "Sýstem", "Systern", "Administrator 20"}) {
    EXPECT_TRUE(checkName(bytes(name)).isRefused()) << name;
  }
  for (const char* name : {"Serverina", "Badmin", "Coachella", "Sys", "Ann"}) {
    EXPECT_FALSE(checkName(name).isRefused()) << name;
  }
}

TEST(Names, ThatCouldEndTheBracketsOfAChatLineAreRefused) {
  EXPECT_EQ(checkName("Ann] hello").reason(), "A name can't contain square brackets.");
  EXPECT_TRUE(checkName("[Ann").isRefused());
  EXPECT_FALSE(checkName("(Ann)").isRefused());
}

TEST(Names, OfBlanksAloneAreRefused) {
  for (const char* name : {"", "  ", "\u00A0", "\u00AD \u00AD"}) {
    EXPECT_EQ(checkName(bytes(name)).reason(), "A name is needed.");
  }
  EXPECT_FALSE(checkName("...").isRefused());
}

TEST(Names, GetTheLowestFreeNumber) {
  EXPECT_EQ(distinctName("Ann", {}), "Ann");
  EXPECT_EQ(distinctName("Ann", {"bob"}), "Ann");
  EXPECT_EQ(distinctName("ANN", {"ann"}), "ANN 2");
  EXPECT_EQ(distinctName("Ann", {"ann2", "ann", "ann3"}), "Ann 4");
  EXPECT_EQ(distinctName("...", {""}), "... 2");
}

TEST(Names, StayWithinTheLimitWithANumber) {
  const std::string name(maxNameLength, 'a');
  std::vector<std::string> taken;
  for (int i = 0; i < 200; ++i) {
    const std::string distinct = distinctName(name, taken);
    EXPECT_LE(distinct.size(), maxNameLength);
    for (const std::string& other : taken) ASSERT_NE(skeletonOf(distinct), other);
    taken.push_back(skeletonOf(distinct));
  }
}

TEST(Names, HaveACommonBeginningWithAnyNumber) {
  EXPECT_EQ(commonSkeleton("Bob 7"), "bob7");
  std::mt19937 random(3);
  for (int round = 0; round < 30; ++round) {
    std::string name;
    for (auto length = random() % 6 == 0 ? random() % 20 : 28 + random() % 5; length > 0; --length) {
      name += "aArnv0W 1."[random() % 10];
    }
    name = visibleName(name);
    std::vector<std::string> taken;
    for (int number = 0; number < 110; ++number) {
      taken.push_back(skeletonOf(distinctName(name, taken)));
      ASSERT_TRUE(taken.back().starts_with(commonSkeleton(name))) << name << ", " << taken.back();
    }
  }
}

TEST(Names, OfAnyBytesGetDistinctSkeletonsInOneArena) {
  std::mt19937 random(7);
  for (int round = 0; round < 300; ++round) {
    std::vector<std::string> taken;
    for (int i = 0; i < 6; ++i) {
      std::string name;
      const std::string letters = round % 2 == 0 ? "aA1lI|. " : bytes("rnvmwö0Oß8\u00A0½");
      for (int length = static_cast<int>(random() % 33); length > 0; --length)
        name += letters[random() % letters.size()];
      const std::string distinct = distinctName(visibleName(name), taken);
      for (const std::string& other : taken) ASSERT_NE(skeletonOf(distinct), other) << distinct;
      taken.push_back(skeletonOf(distinct));
    }
  }
}

TEST_F(ArenaTest, ANameInUseGetsANumberAndItsOwnerIsTold) {
  login(ann, "Ann");
  arena.connected(bob, now);
  say(bob, wire::msgLogin, {"A n\xF1", "", "1", KELVORA_VERSION});
  EXPECT_EQ(view(bob).name, "A n\xF1 2");
  EXPECT_EQ(all(ann, wire::msgPlayerJoined).at(0).at(2), "A n\xF1 2");
  EXPECT_EQ(all(bob, wire::msgServerText).at(0).at(0),
            "Your name is taken or looks like another player's. The others see you as A n\xF1 2.");
  EXPECT_TRUE(all(ann, wire::msgServerText).empty());
}

TEST_F(ArenaTest, ALeaverWhoseCaptureIsPendingKeepsTheName) {
  login(ann, "Ann", "0");
  login(bob, "Bob", "1");
  capture(ann, bob);
  arena.disconnected(bob);
  login(cat, "Bob", "2");
  EXPECT_EQ(view(cat).name, "Bob 2");
}

TEST_F(ArenaTest, ANameLikeTheServersIsRefused) {
  EXPECT_EQ(refusal(arena, {"Server", "", "0", KELVORA_VERSION}),
            "The name looks like the server's. Choose another one.");
}

}  // namespace
}  // namespace kelvora::server
