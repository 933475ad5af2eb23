#include "tests/server/arena/arenaTest.h"

namespace kelvora::server {
namespace {

using Everything = std::map<ClientId, std::vector<Message>>;

/// Sixty credits per minute: one per second alive.
class EconomyTest : public ArenaTest {
 protected:
  EconomyTest() : ArenaTest(quietRulesWithIncome(60)) {}

  void live(Millis time) {
    now += time;
    arena.tick(now);
  }
  /// Logs in Ann with this many credits, then Bob. Discards what they got.
  void begin(int funds) {
    login(ann, "Ann");
    live((funds - 10) * 1'000);
    login(bob, "Bob");
  }
  /// The only answer to Ann. The others only get her funds.
  Message answer() {
    EXPECT_EQ(got[ann].size(), 1U);
    for (const Message& message : got[bob]) {
      EXPECT_EQ(message.id, wire::msgFunds);
      EXPECT_EQ(message.fields.at(0), "1");
    }
    const Message message = got[ann].at(0);
    got.clear();
    return message;
  }
  Message buy(const std::string& item) {
    say(ann, wire::msgBuyRequest, {item});
    return answer();
  }
  Message sell(const std::string& item) {
    say(ann, wire::msgSellRequest, {item});
    return answer();
  }
};

TEST_F(EconomyTest, TradesAreAnsweredWithStockAndFunds) {
  begin(100);
  EXPECT_EQ(buy("1"), (Message{wire::msgBuyAccepted, {"1", "1", "90"}}));
  EXPECT_EQ(buy("1"), (Message{wire::msgBuyAccepted, {"1", "2", "80"}}));
  EXPECT_EQ(buy("5"), (Message{wire::msgBuyAccepted, {"5", "1", "10"}}));
  EXPECT_EQ(sell("5"), (Message{wire::msgSellAccepted, {"5", "0", "45"}}));
  EXPECT_EQ(sell("1"), (Message{wire::msgSellAccepted, {"1", "1", "50"}}));
}

TEST_F(EconomyTest, RefusalsAreAnsweredWithTheirReason) {
  begin(10);
  EXPECT_EQ(buy("0"), (Message{wire::msgBuyDenied, {"Shield costs 20 credits. You have 10 credits."}}));
  EXPECT_EQ(buy("6"), (Message{wire::msgBuyDenied, {"The store has no such powerup."}}));
  EXPECT_EQ(buy("-1"), (Message{wire::msgBuyDenied, {"The store has no such powerup."}}));
  EXPECT_EQ(sell("0"), (Message{wire::msgSellDenied, {"You have nothing to sell of this kind: Shield."}}));
  EXPECT_EQ(sell("6"), (Message{wire::msgSellDenied, {"The store has no such powerup."}}));
  EXPECT_EQ(sell("-1"), (Message{wire::msgSellDenied, {"The store has no such powerup."}}));
}

TEST_F(EconomyTest, EleventhPowerupIsRefused) {
  begin(110);
  for (int i = 1; i <= 10; ++i) {
    EXPECT_EQ(buy("1"), (Message{wire::msgBuyAccepted, {"1", std::to_string(i), std::to_string(110 - 10 * i)}}));
  }
  EXPECT_EQ(buy("1"),
            (Message{wire::msgBuyDenied, {"You cannot carry more than 10 powerups. Use or sell one first."}}));
}

TEST_F(EconomyTest, RequestsForUnknownItemsAreDropped) {
  begin(100);
  const std::vector<Fields> bad = {{""}, {"x"}, {"1x"}, {" 1"}, {"1.5"}, {"99999"}, {"1", "2"}};
  for (const auto id : {wire::msgBuyRequest, wire::msgSellRequest, wire::msgActivateRequest}) {
    for (const Fields& fields : bad) say(ann, id, fields);
  }
  EXPECT_TRUE(got.empty());
}

TEST_F(EconomyTest, OthersLearnATradersFunds) {
  begin(20);
  say(ann, wire::msgBuyRequest, {"1"});
  EXPECT_EQ(got[bob], (std::vector<Message>{{wire::msgFunds, {"1", "10"}}}));
  got.clear();
  say(ann, wire::msgBuyRequest, {"0"});
  EXPECT_FALSE(got.contains(bob)) << "only the requester gets a refusal";
}

TEST_F(EconomyTest, TheDeadTradeToo) {
  begin(20);
  capture(bob, ann);
  EXPECT_EQ(buy("1").id, wire::msgBuyAccepted);
  EXPECT_EQ(sell("1").id, wire::msgSellAccepted);
}

TEST_F(EconomyTest, NobodyTradesBeforeTheLogin) {
  arena.connected(cat, now);
  say(cat, wire::msgBuyRequest, {"1"});
  say(cat, wire::msgSellRequest, {"1"});
  say(cat, wire::msgActivateRequest, {"1"});
  EXPECT_TRUE(got.empty());
}

TEST_F(EconomyTest, EverybodyHasTheirOwnCredits) {
  begin(100);
  buy("5");
  say(bob, wire::msgSellRequest, {"5"});
  EXPECT_EQ(got[bob].at(0).id, wire::msgSellDenied);
  say(bob, wire::msgBuyRequest, {"1"});
  EXPECT_EQ(got[bob].at(1), (Message{wire::msgBuyAccepted, {"1", "1", "0"}}));
  EXPECT_EQ(view(ann).funds, 30);
}

TEST_F(EconomyTest, ReturningPlayersStartOver) {
  begin(100);
  buy("5");
  arena.disconnected(ann);
  arena.connected(ann, now);
  got.clear();
  say(ann, wire::msgLogin, {"Ann", "", "0", KELVORA_VERSION});
  EXPECT_EQ(got[ann].back(), (Message{wire::msgFunds, {"3", "10"}}));
  got.clear();
  EXPECT_EQ(sell("5").id, wire::msgSellDenied);
}

TEST_F(EconomyTest, FloodOfRequestsIsThrottled) {
  begin(1'000);
  for (int i = 0; i < 500; ++i) {
    say(ann, wire::msgBuyRequest, {"1"});
    say(ann, wire::msgSellRequest, {"1"});
  }
  EXPECT_EQ(got[ann].size(), 20U);
}

TEST_F(EconomyTest, StartOfAPowerupIsAnnouncedToEverybody) {
  begin(100);
  buy("0");
  buy("1");
  say(ann, wire::msgActivateRequest, {"1"});
  say(ann, wire::msgActivateRequest, {"0"});
  const std::vector<Message> expected{{wire::msgPowerupOn, {"1", "1"}}, {wire::msgPowerupOn, {"1", "0"}}};
  EXPECT_EQ(got, (Everything{{ann, expected}, {bob, expected}}));
  got.clear();
  EXPECT_EQ(sell("1").id, wire::msgSellDenied) << "it has been used up";
}

TEST_F(EconomyTest, WithoutStockOrLifeOrSlotNothingStarts) {
  begin(100);
  buy("1");
  for (const char* item : {"0", "6", "-1"}) {
    got.clear();
    say(ann, wire::msgActivateRequest, {item});
    EXPECT_EQ(got, (Everything{{ann, {{wire::msgServerText, {"You have none of that ability left."}}}}})) << item;
  }
  capture(bob, ann);
  say(ann, wire::msgActivateRequest, {"1"});
  EXPECT_EQ(
      got,
      (Everything{{ann, {{wire::msgServerText, {"You are out, and cannot use abilities until you are respawned."}}}}}));
  got.clear();
  EXPECT_EQ(sell("1").id, wire::msgSellAccepted) << "nothing was used up";
}

TEST_F(EconomyTest, ARunningPowerupIsNotStartedAgainUntilItsTimeIsOver) {
  begin(100);
  buy("1");
  buy("1");
  say(ann, wire::msgActivateRequest, {"1"});
  got.clear();
  now += 4'999;
  say(ann, wire::msgActivateRequest, {"1"});
  EXPECT_EQ(answer(), (Message{wire::msgServerText, {"That ability isn't ready yet."}}));
  now += 1;
  say(ann, wire::msgActivateRequest, {"1"});
  EXPECT_EQ(got[bob], (std::vector<Message>{{wire::msgPowerupOn, {"1", "1"}}}));
}

TEST_F(EconomyTest, EndOfItsTimeIsNotAnnounced) {
  begin(100);
  buy("4");
  say(ann, wire::msgActivateRequest, {"4"});
  got.clear();
  live(30'000);
  for (const auto& [client, messages] : got) {
    for (const Message& message : messages) EXPECT_TRUE(message.id == wire::msgFunds || message.id == wire::msgPing);
  }
}

TEST_F(EconomyTest, PowerupsContinueThroughDeathAndRespawn) {
  begin(100);
  buy("0");
  buy("0");
  say(ann, wire::msgActivateRequest, {"0"});
  capture(bob, ann);
  live(3'000);
  say(ann, wire::msgSpawnRequest, {""});
  EXPECT_TRUE(view(ann).isAlive);
  got.clear();
  now += 11'999;
  say(ann, wire::msgActivateRequest, {"0"});
  EXPECT_EQ(answer().id, wire::msgServerText);
  now += 1;
  say(ann, wire::msgActivateRequest, {"0"});
  EXPECT_EQ(got[bob].at(0).id, wire::msgPowerupOn) << "fifteen seconds after it began";
}

TEST_F(EconomyTest, LivingPlayersEarnAndEverybodyLearnsIt) {
  login(ann, "Ann");
  live(900);
  EXPECT_TRUE(got.empty());
  login(bob, "Bob");
  live(100);
  EXPECT_EQ(all(ann, wire::msgFunds), (std::vector<Fields>{{"1", "11"}})) << "Bob has been in for a tenth of a second";
  EXPECT_EQ(all(bob, wire::msgFunds), (std::vector<Fields>{{"1", "11"}}));
  live(900);
  EXPECT_EQ(all(ann, wire::msgFunds).back(), (Fields{"2", "11"}));
  EXPECT_EQ(all(bob, wire::msgFunds).back(), (Fields{"2", "11"}));
}

TEST_F(EconomyTest, TheDeadEarnNothingEvenAfterwards) {
  begin(10);
  capture(bob, ann);
  EXPECT_EQ(view(ann).funds, 10);
  live(500);
  live(60'000);
  EXPECT_EQ(view(ann).funds, 10);
  say(ann, wire::msgSpawnRequest, {""});
  live(999);
  EXPECT_EQ(view(ann).funds, 10);
  live(1);
  EXPECT_EQ(view(ann).funds, 11);
}

class DefaultIncomeTest : public ArenaTest {
 protected:
  DefaultIncomeTest() : ArenaTest(quietRulesWithIncome(defaultIncome)) {}
};

TEST_F(DefaultIncomeTest, PaysACreditEveryTwelveSeconds) {
  login(ann, "Ann");
  std::vector<Millis> paid;
  const Millis begun = now;
  for (int i = 0; i < 600; ++i) {
    got.clear();
    arena.tick(now += 100);
    for (const Message& message : got[ann]) {
      if (message.id == wire::msgFunds) paid.push_back(now - begun);
    }
  }
  EXPECT_EQ(paid, (std::vector<Millis>{12'000, 24'000, 36'000, 48'000, 60'000}));
}

}  // namespace
}  // namespace kelvora::server
