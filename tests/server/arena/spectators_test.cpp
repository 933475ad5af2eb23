// Spectators see everything, and nobody sees them.

#include <algorithm>
#include <random>

#include "protocol/frames.h"
#include "server/arena/gallery.h"
#include "tests/server/arena/arenaTest.h"

namespace kelvora::server {
namespace {

ArenaRules watchedRules() {
  ArenaRules rules = quietRules;
  rules.spectators = 2;
  return rules;
}

class Spectators : public ArenaTest {
 protected:
  static constexpr ClientId sue = 20;
  static constexpr ClientId tom = 21;

  std::string mutedBecause;

  Spectators() : ArenaTest(watchedRules()) {}

  std::string muteReason(ClientId) override { return mutedBecause; }

  /// Keeps what everybody got.
  void watch(ClientId client, const std::string& name, const std::string& colour = "0") {
    arena.connected(client, now, Role::spectator);
    say(client, wire::msgLogin, {name, "", colour, KELVORA_VERSION});
  }
  std::vector<std::string> textsTo(ClientId client) {
    std::vector<std::string> texts;
    for (const Fields& fields : all(client, wire::msgServerText)) texts.push_back(fields.at(0));
    return texts;
  }
};

TEST_F(Spectators, GetAGhostAndAllPlayersAtTheLogin) {
  const std::string annsNode = std::to_string(login(ann, "Ann", "3"));
  report(ann, 500, 600);
  watch(sue, "Sue", "3");
  const auto& messages = got[sue];
  EXPECT_EQ(messages.at(0).id, wire::msgLoginAccepted);
  EXPECT_EQ(messages.at(0).fields.at(0), "0") << "Ann has the colour 3";
  EXPECT_EQ(messages.at(0).fields.at(1), "-1");
  EXPECT_EQ(messages.at(1), (Message{wire::msgAliveState, {"-1", "0"}}));
  EXPECT_EQ(messages.at(2), (Message{wire::msgPlayerJoined, {annsNode, "3", "Ann", "500", "600", "1", "0"}}));
  EXPECT_EQ(messages.at(3), (Message{wire::msgFunds, {annsNode, "10"}}));
  EXPECT_EQ(textsTo(sue), (std::vector<std::string>{
                              "You are watching. Only the other spectators get your lines.",
                              "To fly, press the right mouse button, or Brakes on a touch screen, and steer."}));
}

TEST_F(Spectators, AreInNobodysListAndOnNobodysScreen) {
  login(ann, "Ann");
  watch(sue, "Sue");
  say(sue, wire::msgPositionReport, {"10", "20"});
  say(sue, wire::msgChat, {"-1", "hello"});
  say(sue, wire::msgSpawnRequest, {});
  arena.disconnected(sue);
  EXPECT_TRUE(got[ann].empty());
  EXPECT_EQ(arena.playerCount(), 1U);
  EXPECT_EQ(arena.players(now).size(), 1U);
}

TEST_F(Spectators, GetWhatAllPlayersGet) {
  const std::string annsNode = std::to_string(login(ann, "Ann"));
  watch(sue, "Sue");
  got.clear();
  const std::string bobsNode = std::to_string(login(bob, "Bob", "1"));  // discards Bob's arrival
  say(ann, wire::msgChat, {"-1", "hi"});
  say(ann, wire::msgChat, {bobsNode, "(private) psst"});
  EXPECT_EQ(all(sue, wire::msgChat), (std::vector<Fields>{{annsNode, "hi"}}));
  report(bob, 50'000, 50'000);
  circle(ann, 50'000, 50'000);
  EXPECT_EQ(all(sue, wire::msgPosition).size(), 6U);
  EXPECT_EQ(all(sue, wire::msgTailCapture), all(bob, wire::msgTailCapture));
  EXPECT_EQ(all(sue, wire::msgTailCapture).at(0).at(0), annsNode);
  EXPECT_EQ(all(sue, wire::msgFunds), (std::vector<Fields>{{annsNode, "20"}}));
  say(ann, wire::msgBuyRequest, {"1"});
  EXPECT_EQ(all(sue, wire::msgFunds).back(), (Fields{annsNode, "10"}));
  EXPECT_TRUE(all(sue, wire::msgBuyAccepted).empty());
  say(ann, wire::msgActivateRequest, {"1"});
  EXPECT_EQ(all(sue, wire::msgPowerupOn), (std::vector<Fields>{{annsNode, "1"}}));
  arena.restartRound();
  EXPECT_EQ(all(sue, wire::msgRoundOver).size(), 1U);
  EXPECT_EQ(textsTo(sue).back(), "A new round has begun. Press Spawn to play.");
  arena.disconnected(ann);
  pass(10'000);
  EXPECT_EQ(all(sue, wire::msgPlayerLeft), (std::vector<Fields>{{annsNode}}));
}

TEST_F(Spectators, SeeNewcomers) {
  watch(sue, "Sue");
  arena.connected(ann, now);
  say(ann, wire::msgLogin, {"Ann", "", "2", KELVORA_VERSION});
  EXPECT_EQ(all(sue, wire::msgPlayerJoined).at(0).at(2), "Ann");
  EXPECT_EQ(all(sue, wire::msgFunds).size(), 1U);
}

TEST_F(Spectators, SeePowerupsThatRanBeforeAndTheirEnds) {
  const std::string annsNode = std::to_string(login(ann, "Ann"));
  say(ann, wire::msgBuyRequest, {"1"});
  say(ann, wire::msgActivateRequest, {"1"});
  pass(2'000);
  watch(sue, "Sue");
  EXPECT_EQ(all(sue, wire::msgPowerupOn), (std::vector<Fields>{{annsNode, "1"}}));
  pass(2'000);
  EXPECT_TRUE(all(sue, wire::msgPowerupOff).empty());
  pass(1'000);
  EXPECT_EQ(all(sue, wire::msgPowerupOff), (std::vector<Fields>{{annsNode, "1"}}));
}

TEST_F(Spectators, TalkToOneAnotherAlone) {
  login(ann, "Ann");
  watch(sue, "Sue");
  watch(tom, "Tom");
  got.clear();
  say(sue, wire::msgChat, {"-1", "who\tleads?"});
  EXPECT_EQ(textsTo(sue), (std::vector<std::string>{"[Sue, watching] wholeads?"}));
  EXPECT_EQ(textsTo(tom), textsTo(sue));
  EXPECT_TRUE(got[ann].empty());
}

TEST_F(Spectators, LongLinesAreCut) {
  watch(sue, "Sue");
  got.clear();
  say(sue, wire::msgChat, {"-1", std::string(4'000, 'x')});
  EXPECT_EQ(textsTo(sue), (std::vector<std::string>{"[Sue, watching] " + std::string(1'000, 'x')}));
}

TEST_F(Spectators, CantWriteToPlayersNorUseCommands) {
  const std::string annsNode = std::to_string(login(ann, "Ann"));
  watch(sue, "Sue");
  watch(tom, "Tom");
  got.clear();
  say(sue, wire::msgChat, {annsNode, "(private) go left"});
  EXPECT_EQ(
      textsTo(sue),
      (std::vector<std::string>{"Players don't get your lines. Switch to public chat for the other spectators."}));
  say(sue, wire::msgChat, {"-1", "!vote restart"});
  EXPECT_EQ(textsTo(sue).back(), "Only players have commands.");
  EXPECT_TRUE(got[ann].empty());
  EXPECT_TRUE(got[tom].empty());
}

TEST_F(Spectators, AreMutedLikePlayers) {
  watch(sue, "Sue");
  watch(tom, "Tom");
  got.clear();
  mutedBecause = "You are muted.";
  say(sue, wire::msgChat, {"-1", "one"});
  say(sue, wire::msgChat, {"-1", "two"});
  EXPECT_EQ(textsTo(sue), (std::vector<std::string>{"You are muted."})) << "once";
  EXPECT_TRUE(got[tom].empty());
}

TEST_F(Spectators, AreToldThatTheyOnlyWatch) {
  watch(sue, "Sue");
  using Request = std::pair<int, Fields>;
  for (const auto& [id, fields] : {Request{wire::msgSpawnRequest, {}},
                                   {wire::msgBuyRequest, {"1"}},
                                   {wire::msgSellRequest, {"1"}},
                                   {wire::msgActivateRequest, {"1"}}}) {
    got.clear();
    say(sue, static_cast<std::int16_t>(id), fields);
    EXPECT_EQ(
        got[sue],
        (std::vector<Message>{{wire::msgServerText, {"You are watching. To play, connect to the game's own port."}}}));
  }
}

TEST_F(Spectators, MakeTenRequestsASecondAfterABurst) {
  watch(sue, "Sue");
  got.clear();
  for (int i = 0; i < 50; ++i) say(sue, wire::msgSpawnRequest, {});
  EXPECT_EQ(got[sue].size(), 20U);
  now += 1'000;
  for (int i = 0; i < 50; ++i) say(sue, wire::msgChat, {"-1", "x"});
  EXPECT_EQ(got[sue].size(), 30U);
}

TEST_F(Spectators, ArePinged) {
  watch(sue, "Sue");
  pass(999);
  EXPECT_TRUE(all(sue, wire::msgPing).empty());
  pass(1);
  EXPECT_EQ(all(sue, wire::msgPing).size(), 1U);
  now += 70;
  say(sue, wire::msgPingReply, {"1.5"});
  EXPECT_EQ(all(sue, wire::msgLatencyReport), (std::vector<Fields>{{"70"}}));
  pass(12'000);
  EXPECT_EQ(all(sue, wire::msgPing).size(), 2U);
}

TEST_F(Spectators, NeedNoPlaceAmongThePlayers) {
  for (ClientId client = 1; client <= 6; ++client) login(client, "P" + std::to_string(client));
  watch(sue, "Sue", "4");
  EXPECT_EQ(got[sue].at(0).id, wire::msgLoginAccepted);
  EXPECT_EQ(all(sue, wire::msgPlayerJoined).size(), 6U);
}

TEST_F(Spectators, AreOnlySoMany) {
  watch(sue, "Sue");
  watch(tom, "Tom");
  watch(22, "Uma");
  EXPECT_EQ(got[22], (std::vector<Message>{{wire::msgLoginDenied, {"There is no room for more spectators."}}}));
  EXPECT_TRUE(hungUp.contains(22));
  arena.disconnected(tom);
  watch(23, "Vic");
  EXPECT_EQ(got[23].at(0).id, wire::msgLoginAccepted);
}

TEST_F(Spectators, NeedThePasswordAndTheVersionOfPlayers) {
  locked.connected(sue, now, Role::spectator);
  locked.received(sue, textOf(wire::msgLogin, {"Sue", "", "0", KELVORA_VERSION}), now);
  EXPECT_EQ(got[sue], (std::vector<Message>{{wire::msgLoginDenied, {"Wrong password."}}}));
  arena.connected(tom, now, Role::spectator);
  say(tom, wire::msgLogin, {"Tom", "", "0", "0.9"});
  EXPECT_EQ(got[tom].at(0).id, wire::msgLoginDenied);
}

TEST_F(Spectators, GetNamesThatNobodyElseHas) {
  login(ann, "Ann");
  watch(sue, "Ann");
  watch(tom, "ann2");
  std::vector<std::string> names;
  for (const auto& [client, spectator] : arena.spectators()) names.push_back(spectator.name);
  EXPECT_EQ(names, (std::vector<std::string>{"Ann 2", "ann2 2"}));
  EXPECT_EQ(textsTo(sue).at(0), "Your name is taken or looks like another player's. The others see you as Ann 2.");
}

TEST_F(Spectators, TakeNoNameFromPlayers) {
  watch(sue, "Ann");
  arena.connected(ann, now);
  say(ann, wire::msgLogin, {"Ann", "", "0", KELVORA_VERSION});
  EXPECT_EQ(view(ann).name, "Ann");
}

TEST_F(Spectators, DontKeepTheRoundGoing) {
  Arena timed(*this, KELVORA_VERSION, "", 1, {.roundMs = 1'000, .intermissionMs = 1'000, .spectators = 1});
  timed.connected(tom, now, Role::spectator);
  timed.received(tom, textOf(wire::msgLogin, {"Tom", "", "0", KELVORA_VERSION}), now);
  timed.tick(now += 40);
  timed.tick(now += 5'000);
  EXPECT_TRUE(timed.isRoundRunning()) << "the clock runs for people who play";
}

TEST_F(Spectators, CanBeExpelled) {
  login(ann, "Ann");
  watch(sue, "Sue");
  got.clear();
  arena.expel(sue, "Go.");
  EXPECT_EQ(textsTo(sue), (std::vector<std::string>{"Go."}));
  EXPECT_TRUE(hungUp.contains(sue));
  EXPECT_FALSE(arena.isIn(sue));
  EXPECT_TRUE(arena.isIn(ann));
  EXPECT_TRUE(got[ann].empty());
}

TEST_F(Spectators, TheObserverGetsTheSameUncounted) {
  const std::string annsNode = std::to_string(login(ann, "Ann"));
  say(ann, wire::msgBuyRequest, {"1"});
  say(ann, wire::msgActivateRequest, {"1"});
  got.clear();
  arena.observe(true, now);
  EXPECT_EQ(all(observerClient, wire::msgPlayerJoined).size(), 1U);
  EXPECT_EQ(all(observerClient, wire::msgFunds), (std::vector<Fields>{{annsNode, "0"}}));
  EXPECT_EQ(all(observerClient, wire::msgPowerupOn), (std::vector<Fields>{{annsNode, "1"}}));
  report(ann, 100, 200);
  EXPECT_EQ(all(observerClient, wire::msgPosition), (std::vector<Fields>{{annsNode, "100", "200"}}));
  pass(5'000);
  EXPECT_EQ(all(observerClient, wire::msgPowerupOff), (std::vector<Fields>{{annsNode, "1"}}));
  EXPECT_TRUE(all(observerClient, wire::msgPing).empty());
  EXPECT_TRUE(arena.spectators().empty());
  arena.observe(false, now);
  got.clear();
  report(ann, 300, 200);
  EXPECT_TRUE(got[observerClient].empty());
}

TEST_F(Spectators, RoundsAreCounted) {
  EXPECT_EQ(arena.roundCount(), 0);
  login(ann, "Ann");
  EXPECT_EQ(arena.roundCount(), 1);
  login(bob, "Bob");
  EXPECT_EQ(arena.roundCount(), 1);
  arena.endRound();
  EXPECT_EQ(arena.roundCount(), 1);
  pass(40);
  pass(12'000);
  EXPECT_EQ(arena.roundCount(), 2);
  arena.restartRound();
  EXPECT_EQ(arena.roundCount(), 3);
}

/// A message of random bytes, or of a known kind with random fields.
std::string randomMessage(std::mt19937& random) {
  const auto below = [&](int limit) { return std::uniform_int_distribution(0, limit - 1)(random); };
  std::string text(1, static_cast<char>(128 + below(45)));
  const char* const fields[] = {"-1", "1", "0", "7", "-32768", "32767", "50000", "1e9", "nan", "", "!who", "x"};
  for (int i = below(5); i > 0; --i) {
    if (below(6) == 0) {
      for (int size = below(40); size > 0; --size) text += static_cast<char>(below(256));
    } else {
      text += fields[below(12)];
    }
    if (i > 1) text += wire::fieldSeparator;
  }
  return text;
}

TEST_F(Spectators, ChangeNothingForPlayersWhateverTheySend) {
  std::mt19937 random(20);
  login(ann, "Ann", "0");
  login(bob, "Bob", "1");
  report(ann, 1'000, 1'000);
  report(bob, 2'000, 2'000);
  watch(sue, "Sue");
  watch(tom, "Tom");
  got.clear();
  for (int i = 0; i < 20'000; ++i) {
    arena.received(i % 2 == 0 ? sue : tom, randomMessage(random), now);
    now += 7;
    if (i % 1'000 == 0) arena.tick(now);
  }
  const auto isPing = [](const Message& message) { return message.id == wire::msgPing; };
  for (const ClientId player : {ann, bob}) EXPECT_TRUE(std::ranges::all_of(got[player], isPing));
  EXPECT_GT(textsTo(sue).size(), 100U) << "some of it was sound";
  EXPECT_EQ(view(ann).position, (Point{1'000, 1'000}));
  EXPECT_TRUE(view(bob).isAlive);
  for (const ClientId spectator : {sue, tom}) {
    for (const Message& message : got[spectator]) {
      EXPECT_TRUE(message.id == wire::msgServerText || message.id == wire::msgPing ||
                  message.id == wire::msgLatencyReport)
          << message.id;
    }
  }
}

}  // namespace
}  // namespace kelvora::server
