#include "tests/server/arena/arenaTest.h"

namespace kelvora::server {
namespace {

TEST_F(ArenaTest, LoginIsAcceptedWithColourNodeAndPosition) {
  arena.connected(ann, now);
  say(ann, wire::msgLogin, {"Ann", "whatever", "4", KELVORA_VERSION});
  ASSERT_EQ(got[ann].size(), 2U);
  const Message& accepted = got[ann][0];
  EXPECT_EQ(accepted.id, wire::msgLoginAccepted);
  ASSERT_EQ(accepted.fields.size(), 4U);
  EXPECT_EQ(accepted.fields[0], "4");
  EXPECT_EQ(accepted.fields[1], "1");
  for (const std::size_t axis : {2U, 3U}) {
    EXPECT_GE(std::stoi(accepted.fields[axis]), 10'000);
    EXPECT_LE(std::stoi(accepted.fields[axis]), 90'000);
  }
  EXPECT_EQ(got[ann][1], (Message{wire::msgFunds, {"1", "10"}}));
  EXPECT_EQ(arena.playerCount(), 1U);
}

TEST_F(ArenaTest, NewcomersAndPlayersLearnOfEachOther) {
  login(ann, "Ann", "0");
  say(ann, wire::msgPositionReport, {"123.5", "1.5E+04"});
  got.clear();
  arena.connected(bob, now);
  say(bob, wire::msgLogin, {"Bob", "", "2", KELVORA_VERSION});
  ASSERT_EQ(got[bob].size(), 4U);
  EXPECT_EQ(got[bob][0].id, wire::msgLoginAccepted);
  EXPECT_EQ(got[bob][1], (Message{wire::msgPlayerJoined, {"1", "0", "Ann", "123.5", "1.5E+04", "1", "0"}}));
  EXPECT_EQ(got[bob][2], (Message{wire::msgFunds, {"1", "10"}}));
  EXPECT_EQ(got[bob][3], (Message{wire::msgFunds, {"2", "10"}}));
  const Fields& start = got[bob][0].fields;
  EXPECT_EQ(got[ann], (std::vector<Message>{{wire::msgPlayerJoined, {"2", "2", "Bob", start[2], start[3], "1", "0"}},
                                            {wire::msgFunds, {"2", "10"}}}));
}

TEST_F(ArenaTest, ATakenColourIsReplacedByAFreeOne) {
  login(ann, "Ann", "1");
  login(bob, "Bob", "0");
  arena.connected(cat, now);
  say(cat, wire::msgLogin, {"Cat", "", "1", KELVORA_VERSION});
  EXPECT_EQ(got[cat].at(0).fields.at(0), "2");
}

TEST_F(ArenaTest, AnInvalidColourIsReplacedToo) {
  for (const char* colour : {"-1", "6", "red", ""}) {
    const ClientId client = 10;
    arena.connected(client, now);
    say(client, wire::msgLogin, {"Ann", "", colour, KELVORA_VERSION});
    EXPECT_EQ(got[client].at(0).fields.at(0), "0") << colour;
    arena.disconnected(client);
    got.clear();
  }
}

TEST_F(ArenaTest, NodesAreNotReusedAtOnce) {
  EXPECT_EQ(login(ann, "Ann"), 1);
  arena.disconnected(ann);
  EXPECT_EQ(login(bob, "Bob"), 2);
}

TEST_F(ArenaTest, RefusesWithAReason) {
  EXPECT_NE(refusal(arena, {"Ann", "", "0", "1.2.0"}).find(KELVORA_VERSION), std::string::npos);
  EXPECT_NE(refusal(arena, {"Ann", "", "0", ""}).find("version"), std::string::npos);
  EXPECT_NE(refusal(arena, {"Ann", ""}).find("not readable"), std::string::npos);
  EXPECT_NE(refusal(arena, {"", "", "0", KELVORA_VERSION}).find("name"), std::string::npos);
  EXPECT_NE(refusal(arena, {"   ", "", "0", KELVORA_VERSION}).find("name"), std::string::npos);
  EXPECT_NE(refusal(arena, {std::string(33, 'a'), "", "0", KELVORA_VERSION}).find("longer than 32"), std::string::npos);
  EXPECT_NE(refusal(arena, {"A\nnn", "", "0", KELVORA_VERSION}).find("control"), std::string::npos);
  EXPECT_NE(refusal(arena, {"A\x7Fnn", "", "0", KELVORA_VERSION}).find("control"), std::string::npos);
  EXPECT_NE(refusal(arena, {"A\x9Dnn", "", "0", KELVORA_VERSION}).find("control"), std::string::npos) << "no letter";
  EXPECT_NE(refusal(arena, {"A\x80nn", "", "0", KELVORA_VERSION}).find("euro sign"), std::string::npos);
  EXPECT_NE(refusal(locked, {"Ann", "sesame\x80", "0", KELVORA_VERSION}).find("euro sign"), std::string::npos);
  EXPECT_NE(refusal(locked, {"Ann", "Sesame", "0", KELVORA_VERSION}).find("password"), std::string::npos);
  EXPECT_EQ(arena.playerCount(), 0U);
}

TEST_F(ArenaTest, AdmitsAtTheLimits) {
  EXPECT_EQ(refusal(arena, {std::string(32, 'a'), "", "0", KELVORA_VERSION}), "");
  EXPECT_EQ(refusal(locked, {"\xC4nn \x83\x8A\x9F\xFF", "sesame", "0", KELVORA_VERSION}), "");
}

TEST_F(ArenaTest, SixFillTheArena) {
  std::set<std::string> colours;
  for (ClientId client = 1; client <= 6; ++client) {
    arena.connected(client, now);
    say(client, wire::msgLogin, {"P", "", "3", KELVORA_VERSION});
    colours.insert(got[client].at(0).fields.at(0));
  }
  EXPECT_EQ(colours, (std::set<std::string>{"0", "1", "2", "3", "4", "5"}));
  EXPECT_NE(refusal(arena, {"Ann", "", "0", KELVORA_VERSION}).find("full"), std::string::npos);
  arena.disconnected(4);
  EXPECT_EQ(refusal(arena, {"Ann", "", "0", KELVORA_VERSION}), "");
}

TEST_F(ArenaTest, RefusedClientIsIgnored) {
  refusal(arena, {"", "", "0", KELVORA_VERSION});
  got.clear();
  say(99, wire::msgLogin, {"Ann", "", "0", KELVORA_VERSION});
  EXPECT_TRUE(got.empty());
}

TEST_F(ArenaTest, IgnoresMessagesBeforeTheLoginAndSecondLogins) {
  login(ann, "Ann");
  arena.connected(bob, now);
  say(bob, wire::msgChat, {"-1", "hello"});
  say(bob, wire::msgPositionReport, {"1", "2"});
  say(bob, wire::msgSpawnRequest, {""});
  EXPECT_TRUE(got.empty());
  say(ann, wire::msgLogin, {"Ann2", "", "0", KELVORA_VERSION});
  EXPECT_TRUE(got.empty());
}

TEST_F(ArenaTest, DeparturesAreAnnouncedToTheRest) {
  login(ann, "Ann");
  login(bob, "Bob");
  arena.connected(cat, now);
  arena.disconnected(bob);
  EXPECT_EQ(got, (std::map<ClientId, std::vector<Message>>{{ann, {{wire::msgPlayerLeft, {"2"}}}}}));
  arena.disconnected(cat);
  arena.disconnected(bob);
  EXPECT_EQ(got[ann].size(), 1U) << "nobody leaves who was not in or has already left";
}

TEST_F(ArenaTest, PositionsAreRelayedToEverybodyAsReceived) {
  login(ann, "Ann");
  login(bob, "Bob");
  say(ann, wire::msgPositionReport, {".5", "1.234568E+04"});
  const std::vector<Message> expected{{wire::msgPosition, {"1", ".5", "1.234568E+04"}}};
  EXPECT_EQ(got[ann], expected);
  EXPECT_EQ(got[bob], expected);
}

TEST_F(ArenaTest, WorldIncludesItsEdges) {
  login(ann, "Ann");
  say(ann, wire::msgPositionReport, {"0", "100000"});
  EXPECT_EQ(got[ann].size(), 1U);
}

TEST_F(ArenaTest, InvalidPositionsAreRefused) {
  login(ann, "Ann");
  const std::vector<Fields> bad = {{"1"},        {"1", "2", "3"}, {"", "2"},       {"1", ""},         {"abc", "2"},
                                   {"1", "2x"},  {" 1", "2"},     {"-1", "2"},     {"1", "100000.1"}, {"nan", "2"},
                                   {"1", "inf"}, {"1E+39", "2"},  {"1", "1E+400"}, {"0x10", "2"}};
  for (const Fields& fields : bad) say(ann, wire::msgPositionReport, fields);
  EXPECT_TRUE(got.empty());
}

TEST_F(ArenaTest, FloodOfPositionsIsThrottled) {
  login(ann, "Ann");
  login(bob, "Bob");
  for (int i = 0; i < 10'000; ++i) {  // ten per millisecond
    if (i % 10 == 0) ++now;
    say(ann, wire::msgPositionReport, {"1", "2"});
  }
  // The burst of 50, then 100 per second.
  EXPECT_GE(got[bob].size(), 149U);
  EXPECT_LE(got[bob].size(), 151U);
  say(bob, wire::msgPositionReport, {"3", "4"});
  EXPECT_EQ(got[ann].back(), (Message{wire::msgPosition, {"2", "3", "4"}})) << "others are not affected";
}

TEST_F(ArenaTest, PingsComeSoonAfterTheLoginAndThenFiveTimesAMinute) {
  login(ann, "Ann");
  arena.connected(bob, now);
  arena.tick(now + 999);
  EXPECT_TRUE(got.empty());
  arena.tick(now + 1'000);
  EXPECT_EQ(got[ann], (std::vector<Message>{{wire::msgPing, {"6"}}})) << "the server's time is 6000 ms";
  arena.tick(now + 12'999);
  EXPECT_EQ(got[ann].size(), 1U);
  arena.tick(now + 13'000);
  EXPECT_EQ(got[ann].size(), 2U);
  EXPECT_FALSE(got.contains(bob)) << "not logged in";
}

TEST_F(ArenaTest, PingReplyIsMeasuredOnce) {
  login(ann, "Ann");
  say(ann, wire::msgPingReply, {"43200"});
  EXPECT_TRUE(got.empty());
  now += 1'000;
  arena.tick(now);
  now += 37;
  say(ann, wire::msgPingReply, {"43200"});
  say(ann, wire::msgPingReply, {"43200"});
  EXPECT_EQ(got[ann], (std::vector<Message>{{wire::msgPing, {"6"}}, {wire::msgLatencyReport, {"37"}}}));
}

TEST_F(ArenaTest, LoginsTimeOut) {
  arena.connected(ann, now);
  arena.tick(now + 9'999);
  EXPECT_TRUE(hungUp.empty());
  arena.tick(now + 10'000);
  EXPECT_EQ(hungUp, std::set<ClientId>{ann});
  login(bob, "Bob");
  arena.tick(now + 60'000);
  EXPECT_EQ(hungUp, std::set<ClientId>{ann});
}

TEST_F(ArenaTest, PublicChatGoesToEverybody) {
  login(ann, "Ann");
  login(bob, "Bob");
  arena.connected(cat, now);
  say(ann, wire::msgChat, {"-1", "hello"});
  const std::vector<Message> expected{{wire::msgChat, {"1", "hello"}}};
  EXPECT_EQ(got, (std::map<ClientId, std::vector<Message>>{{ann, expected}, {bob, expected}}));
}

TEST_F(ArenaTest, PrivateChatGoesToTheAddresseeAndBack) {
  login(ann, "Ann");
  login(bob, "Bob");
  login(cat, "Cat");
  say(ann, wire::msgChat, {"3", "(private) psst"});
  const std::vector<Message> expected{{wire::msgChat, {"1", "(private) psst"}}};
  EXPECT_EQ(got, (std::map<ClientId, std::vector<Message>>{{ann, expected}, {cat, expected}}));
  got.clear();
  say(ann, wire::msgChat, {"1", "(private) me"});
  EXPECT_EQ(got[ann].size(), 1U) << "a message to yourself arrives once";
}

TEST_F(ArenaTest, ChatToAnUnknownPlayerIsAnsweredToItsSender) {
  login(ann, "Ann");
  login(bob, "Bob");
  for (const char* target : {"0", "9", "-2"}) {
    got.clear();
    say(ann, wire::msgChat, {target, "hello"});
    ASSERT_EQ(got.size(), 1U) << target;
    EXPECT_EQ(got[ann].at(0).id, wire::msgServerText);
  }
}

TEST_F(ArenaTest, InvalidChatIsDropped) {
  login(ann, "Ann");
  say(ann, wire::msgChat, {"-1"});
  say(ann, wire::msgChat, {"x", "hello"});
  say(ann, wire::msgChat, {"-1", "a", "b"});
  EXPECT_TRUE(got.empty());
}

TEST_F(ArenaTest, ControlCharactersAreRemovedFromChatWhichMayBeEmpty) {
  login(ann, "Ann");
  say(ann, wire::msgChat, {"-1", "a\r\nb\x7F"});
  say(ann, wire::msgChat, {"-1", ""});
  EXPECT_EQ(got[ann], (std::vector<Message>{{wire::msgChat, {"1", "ab"}}, {wire::msgChat, {"1", ""}}}));
}

TEST_F(ArenaTest, FloodOfChatIsThrottled) {
  login(ann, "Ann");
  for (int i = 0; i < 1000; ++i) say(ann, wire::msgChat, {"-1", "hello"});
  EXPECT_EQ(got[ann].size(), 20U);
  now += 1'000;
  for (int i = 0; i < 1000; ++i) say(ann, wire::msgChat, {"-1", "hello"});
  EXPECT_EQ(got[ann].size(), 30U);
}

TEST_F(ArenaTest, NewcomersLearnDeathsAndKills) {
  login(ann, "Ann");
  login(cat, "Cat");
  capture(cat, ann);
  arena.connected(bob, now);
  say(bob, wire::msgLogin, {"Bob", "", "2", KELVORA_VERSION});
  const auto joined = all(bob, wire::msgPlayerJoined);
  ASSERT_EQ(joined.size(), 2U);
  EXPECT_EQ(joined[0].at(5), "0");
  EXPECT_EQ(joined[0].at(6), "0");
  EXPECT_EQ(joined[1].at(5), "1");
  EXPECT_EQ(joined[1].at(6), "1");
}

TEST_F(ArenaTest, UnknownMessagesAndClientsAreIgnored) {
  login(ann, "Ann");
  say(ann, 167, {"x"});
  say(77, wire::msgChat, {"-1", "hello"});
  arena.received(ann, "", now);
  EXPECT_TRUE(got.empty());
}

}  // namespace
}  // namespace kelvora::server
