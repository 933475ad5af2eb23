#include "server/lists/hostRegistry.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "generated/version.h"
#include "server/lists/publishSchedule.h"

namespace kelvora::server {
namespace {

using Answer = HostRegistry::Answer;

Announcement of(const std::string& address, std::uint16_t port, std::size_t players = 3,
                const std::string& version = KELVORA_VERSION) {
  return {version, {.address = address, .port = port, .notes = "n", .players = players, .maxPlayers = 6}};
}

const HostQuery all{.version = KELVORA_VERSION};
constexpr Millis lifetime = 900'000;  // a quarter of an hour

TEST(HostRegistry, KeepsAnEntryForAQuarterOfAnHourAfterItsLastAnnouncement) {
  HostRegistry registry;
  EXPECT_EQ(registry.announce("a", of("192.0.2.7", 2010), 1'000), Answer::done);
  EXPECT_EQ(*registry.listing(all, 1'000 + lifetime - 1), "[192.0.2.7|2010|0|n|3|6]-END-\n");
  EXPECT_EQ(registry.announce("a", of("192.0.2.7", 2010, 4), 500'000), Answer::done);
  EXPECT_EQ(*registry.listing(all, 1'000 + lifetime), "[192.0.2.7|2010|0|n|4|6]-END-\n");
  EXPECT_EQ(*registry.listing(all, 500'000 + lifetime), "-END-\n");
  EXPECT_EQ(registry.size(), 0U);
}

TEST(HostRegistry, ListsMatchingEntries) {
  HostRegistry registry;
  registry.announce("a", of("one.example", 1, 0), 0);
  registry.announce("a", of("two.example", 2, 6), 0);
  registry.announce("a", of("old.example", 3, 3, "1.2.0"), 0);
  EXPECT_EQ(*registry.listing(all, 0), "[one.example|1|0|n|0|6][two.example|2|0|n|6|6]-END-\n");
  EXPECT_EQ(*registry.listing({.version = KELVORA_VERSION, .withFull = false}, 0), "[one.example|1|0|n|0|6]-END-\n");
  EXPECT_EQ(*registry.listing({.version = KELVORA_VERSION, .withEmpty = false}, 0), "[two.example|2|0|n|6|6]-END-\n");
  EXPECT_EQ(*registry.listing({.version = "1.2.0"}, 0), "[old.example|3|0|n|3|6]-END-\n");
}

TEST(HostRegistry, OnlyItsAnnouncerChangesOrWithdrawsAnEntry) {
  HostRegistry registry;
  registry.announce("a", of("192.0.2.7", 2010), 0);
  EXPECT_EQ(registry.announce("b", of("192.0.2.7", 2010, 6), 1), Answer::notOwner);
  EXPECT_EQ(registry.withdraw("b", of("192.0.2.7", 2010).host, 1), Answer::notOwner);
  EXPECT_EQ(*registry.listing(all, 1), "[192.0.2.7|2010|0|n|3|6]-END-\n");
  EXPECT_EQ(registry.announce("b", of("192.0.2.7", 2011), 1), Answer::done) << "another port is another server";
  EXPECT_EQ(registry.withdraw("a", of("192.0.2.7", 2010).host, 1), Answer::done);
  EXPECT_EQ(*registry.listing(all, 1), "[192.0.2.7|2011|0|n|3|6]-END-\n");
  EXPECT_EQ(registry.withdraw("a", of("192.0.2.7", 2010).host, 1), Answer::done) << "it is already gone";
  EXPECT_EQ(registry.announce("c", of("192.0.2.7", 2011), 1 + lifetime), Answer::done) << "its time is over";
}

TEST(HostRegistry, OneHostHasAtMostThirtyTwoEntries) {
  HostRegistry registry;
  for (std::uint16_t port = 1; port <= 32; ++port) {
    EXPECT_EQ(registry.announce("a", of("x", port), 0), Answer::done) << port;
  }
  EXPECT_EQ(registry.announce("a", of("x", 33), 0), Answer::tooManyFromNetwork);
  EXPECT_EQ(registry.announce("a", of("x", 32, 5), 0), Answer::done) << "its existing entries may change";
  EXPECT_EQ(registry.announce("b", of("x", 33), 0), Answer::done);
  EXPECT_EQ(registry.announce("a", of("x", 34), 0, true), Answer::done) << "trusted";
}

TEST(HostRegistry, OutdatedListingsTakeAtMostAMebibyteInAll) {
  HostRegistry registry;
  Announcement longest = of(std::string(255, 'a'), 1);
  longest.host.notes = std::string(200, 'n');
  for (std::uint16_t port = 1; port <= 1'000; ++port) {
    longest.host.port = port;
    ASSERT_EQ(registry.announce("a", longest, 0, true), Answer::done);
  }
  std::vector<std::shared_ptr<const std::string>> held;
  const auto change = [&](std::size_t players) {
    longest.host.players = players;
    registry.announce("a", longest, 0, true);
  };
  for (std::size_t i = 0; i < 6; ++i) {
    held.push_back(registry.listing(all, 0));
    change(i);
  }
  const std::size_t size = held.back()->size();
  EXPECT_GT(size, std::size_t{400} << 10);
  // The last one has not been replaced yet.
  EXPECT_EQ(held[4]->size(), size);
  EXPECT_EQ(held[3]->size(), size) << "two fit into a mebibyte";
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(held[i]->capacity(), std::string().capacity()) << i;

  // Those that nobody holds any more don't count.
  held.erase(held.begin() + 3);
  held.push_back(registry.listing(all, 0));
  EXPECT_EQ(held[3]->size(), size);
  EXPECT_EQ(held[4]->size(), size);
  EXPECT_EQ(held[5]->size(), size) << "the current one is always whole";
}

TEST(HostRegistry, HasNoMoreEntriesThanItMay) {
  HostRegistry registry(2);
  EXPECT_EQ(registry.announce("a", of("x", 1), 0), Answer::done);
  EXPECT_EQ(registry.announce("b", of("x", 2), 0), Answer::done);
  EXPECT_EQ(registry.announce("c", of("x", 3), 0, true), Answer::full) << "nobody is exempt";
  EXPECT_EQ(registry.announce("a", of("x", 1, 5), 0), Answer::done);
  registry.withdraw("a", of("x", 1).host, 0);
  EXPECT_EQ(registry.announce("c", of("x", 3), 0), Answer::done);
}

TEST(HostRegistry, AHostThatHasLeftMayReturn) {
  HostRegistry registry;
  for (int round = 0; round < 3; ++round) {
    for (std::uint16_t port = 1; port <= 32; ++port) {
      ASSERT_EQ(registry.announce("a", of("x", port), round), Answer::done) << port;
    }
    for (std::uint16_t port = 1; port <= 32; ++port) registry.withdraw("a", of("x", port).host, round);
  }
  EXPECT_EQ(registry.size(), 0U);
}

/// A registry with one more entry than a listing has room for, each with two players.
HostRegistry large(Millis now) {
  HostRegistry registry(2'000);
  for (std::uint16_t port = 1; port <= 1'001; ++port) registry.announce("a", of("x", port, 2), now, true);
  return registry;
}

std::size_t countOf(const std::string& text, const std::string& what) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; ++at) ++count;
  return count;
}

TEST(HostRegistry, OfALargeNumberOfGamesTheMostAttractiveAreShown) {
  HostRegistry registry = large(0);
  registry.announce("a", of("x", 1'000, 6), 0, true);
  registry.announce("a", of("x", 1'001, 5), 0, true);
  Announcement closed = of("x", 999, 4);
  closed.host.passwordRequired = true;
  registry.announce("a", closed, 0, true);
  const std::string text = *registry.listing(all, 0);
  EXPECT_EQ(countOf(text, "["), 1'000U);
  EXPECT_TRUE(text.starts_with("[x|1001|0|n|5|6][x|1|0|n|2|6]")) << text.substr(0, 100);
  EXPECT_TRUE(text.ends_with("|2|6][x|1000|0|n|6|6]-END-\n")) << "full, but with more players than the closed one";
  EXPECT_EQ(countOf(*registry.listing({.version = KELVORA_VERSION, .withFull = false}, 0), "[x|999|1|"), 1U)
      << "all thousand that match";
  const std::string table = *registry.table(0);
  EXPECT_EQ(countOf(table, "<tr>"), 1'000U);
  EXPECT_LT(table.find("x:1000/"), table.find("x:1001/"));
  EXPECT_LT(table.find("x:1001/"), table.find("x:999/"));
}

TEST(HostRegistry, ALargeListingIsMadeOnceASecond) {
  HostRegistry registry = large(0);
  const auto first = registry.listing(all, 5'000);
  const auto table = registry.table(5'000);
  registry.announce("a", of("x", 1, 5), 5'001, true);
  EXPECT_EQ(registry.listing(all, 5'999), first);
  EXPECT_EQ(registry.table(5'999), table);
  EXPECT_NE(registry.listing(all, 6'000), first);
  EXPECT_NE(registry.table(6'000), table);
  EXPECT_TRUE(registry.listing(all, 6'000)->starts_with("[x|1|0|n|5|6]"));
  // A thousand entries are few enough to be up to date.
  registry.withdraw("a", of("x", 1).host, 6'001);
  EXPECT_FALSE(registry.listing(all, 6'001)->starts_with("[x|1|"));
}

TEST(HostRegistry, KeepsThirtyTwoListings) {
  HostRegistry registry;
  const auto version = [](std::size_t number) { return "1.0." + std::to_string(number); };
  std::vector<std::shared_ptr<const std::string>> listings;
  for (std::uint16_t i = 0; i < 33; ++i) registry.announce("n", of("x", i, 3, version(i)), 0, true);
  for (std::uint16_t i = 0; i < 33; ++i) listings.push_back(registry.listing({.version = version(i)}, i));
  for (std::size_t i = 1; i < 33; ++i) EXPECT_EQ(registry.listing({.version = version(i)}, 33), listings[i]) << i;
  EXPECT_NE(registry.listing({.version = version(0)}, 33), listings[0]) << "the oldest made room";
}

TEST(HostRegistry, HoldsAThousandEntriesThatAClientCanRead) {
  HostRegistry registry;
  Announcement longest = of(std::string(255, 'a'), 1);
  longest.host.notes = std::string(200, '&');
  for (int i = 0; i < 1'000; ++i) {
    longest.host.port = static_cast<std::uint16_t>(i + 1);
    ASSERT_EQ(registry.announce("net" + std::to_string(i / 32), longest, 0), Answer::done) << i;
  }
  longest.host.port = 2'000;
  EXPECT_EQ(registry.announce("late", longest, 0), Answer::full);
  EXPECT_LT(registry.listing(all, 0)->size(), 1U << 20) << "the longest answer that a client reads";
  EXPECT_LT(registry.table(0)->size(), 4U << 20);
  EXPECT_EQ(registry.announce("late", longest, lifetime), Answer::done);
  EXPECT_EQ(registry.size(), 1U);
}

TEST(HostRegistry, EverybodySharesAListingUntilAnEntryChanges) {
  HostRegistry registry;
  registry.announce("a", of("one.example", 1), 0);
  const auto first = registry.listing(all, 0);
  registry.announce("a", of("one.example", 1), 1'000);
  EXPECT_EQ(registry.listing(all, 1'000), first) << "nothing is new";
  EXPECT_NE(registry.listing({.version = KELVORA_VERSION, .withFull = false}, 1'000), first);
  auto expectNew = [&, last = first](Millis now, const std::string& records) mutable {
    EXPECT_EQ(*registry.listing(all, now), records + "-END-\n");
    EXPECT_NE(registry.listing(all, now), last);
    EXPECT_EQ(registry.listing(all, now), registry.listing(all, now));
    last = registry.listing(all, now);
  };
  registry.announce("a", of("one.example", 1, 4), 2'000);
  expectNew(2'000, "[one.example|1|0|n|4|6]");
  registry.announce("b", of("two.example", 2), 3'000);
  expectNew(3'000, "[one.example|1|0|n|4|6][two.example|2|0|n|3|6]");
  registry.withdraw("a", of("one.example", 1).host, 4'000);
  expectNew(4'000, "[two.example|2|0|n|3|6]");
  EXPECT_EQ(*registry.listing(all, 3'000 + lifetime), "-END-\n");
  EXPECT_EQ(*first, "[one.example|1|0|n|3|6]-END-\n") << "an answer being sent stays whole";
}

TEST(HostRegistry, EverybodySharesATableUntilAnEntryChanges) {
  HostRegistry registry;
  const auto empty = registry.table(0);
  EXPECT_EQ(empty->find("<tr>"), std::string::npos);
  registry.announce("a", of("one.example", 1), 0);
  const auto first = registry.table(0);
  EXPECT_NE(first->find("one.example:1/"), std::string::npos);
  registry.announce("a", of("one.example", 1), 1'000);
  EXPECT_EQ(registry.table(1'000), first) << "nothing is new";
  registry.announce("b", of("two.example", 2, 6), 2'000);
  const auto second = registry.table(2'000);
  EXPECT_LT(second->find("two.example:2/"), second->find("one.example:1/")) << "more players";
  registry.withdraw("b", of("two.example", 2).host, 3'000);
  EXPECT_EQ(*registry.table(3'000), *first);
  EXPECT_EQ(*registry.table(1'000 + lifetime), *empty);
}

TEST(HostRegistry, ListingsOfUnknownVersionsAreNotKept) {
  HostRegistry registry;
  registry.announce("a", of("one.example", 1), 0);
  const auto unknown = registry.listing({.version = "9"}, 0);
  EXPECT_EQ(*unknown, "-END-\n");
  EXPECT_EQ(unknown.use_count(), 1);
}

/// Decodes the query like a web server. Only these characters are escaped in it.
std::string read(std::string query, Announcement& announcement) {
  std::map<std::string, std::string, std::less<>> values;
  query += '&';
  for (std::size_t at = 0, end; (end = query.find('&', at)) != std::string::npos; at = end + 1) {
    const std::string pair = query.substr(at, end - at);
    const std::size_t equals = pair.find('=');
    std::string value;
    for (std::size_t i = equals + 1; i < pair.size(); ++i) {
      if (pair[i] != '%') {
        value += pair[i];
      } else {
        value += static_cast<char>(std::stoi(pair.substr(i + 1, 2), nullptr, 16));
        i += 2;
      }
    }
    values[pair.substr(0, equals)] = value;
  }
  return readAnnouncement([&](std::string_view name) { return values.contains(name) ? values.find(name)->second : ""; },
                          announcement)
      .reason();
}

TEST(Announcement, RoundTripsThroughItsQuery) {
  const Announcement sent{KELVORA_VERSION,
                          {.address = "2001:db8::7",
                           .port = 32'766,
                           .passwordRequired = true,
                           .notes = "50% + 1 & more = f\xFCr alle?#/",
                           .players = 5,
                           .maxPlayers = 6,
                           .mayWatch = true}};
  Announcement read;
  EXPECT_EQ(server::read(announcementQuery(sent), read), "");
  EXPECT_EQ(read, sent);
}

TEST(Announcement, TheSenderRemovesTextThatTheListWouldRefuse) {
  Announcement sent = of("play.example", 2010);
  sent.host.notes = "a|b[c]\n-END-";
  Announcement read;
  EXPECT_EQ(server::read(announcementQuery(sent), read), "");
  EXPECT_EQ(read.host.notes, "a b c   END-");
}

TEST(Announcement, InvalidValuesAreRefusedByName) {
  struct Row {
    const char* name;
    std::string value;
    bool isFit;
  };
  const Row rows[] = {
      {"version", "", false},
      {"version", KELVORA_VERSION " ", false},
      {"version", KELVORA_VERSION "]", false},
      {"version", "12345678901234567", false},
      {"version", "1234567890123456", true},
      {"address", "", true},
      {"address", "play-1.example", true},
      {"address", "a b", false},
      {"address", "a|b", false},
      {"address", "[::1]", false},
      {"address", "a%00", false},
      {"address", std::string(255, 'a'), true},
      {"address", std::string(256, 'a'), false},
      {"watch", "1", true},
      {"watch", "0", true},
      {"watch", "", true},
      {"watch", "2", false},
      {"port", "", false},
      {"port", "0", false},
      {"port", "1", true},
      {"port", "32766", true},
      {"port", "32767", false},
      {"port", "65536", false},
      {"port", "-1", false},
      {"port", "1x", false},
      {"password", "2", false},
      {"password", "", false},
      {"password", "1", true},
      {"notes", "a%7Cb", false},
      {"notes", "%5B", false},
      {"notes", "%5D", false},
      {"notes", "a%0Ab", false},
      {"notes", "%00", false},
      {"notes", "%14", false},
      {"notes", "%7F", false},
      {"notes", "x-END-", false},
      {"notes", "", true},
      {"notes", std::string(200, 'n'), true},
      {"notes", std::string(201, 'n'), false},
      {"max", "0", false},
      {"max", "1001", false},
      {"max", "2", false},  // fewer than the players
      {"max", "3", true},
      {"players", "7", false},
      {"players", "-1", false},
      {"players", "", false},
      {"players", "6", true},
  };
  for (const Row& row : rows) {
    std::string query = "version=" KELVORA_VERSION "&address=a&port=2010&password=0&notes=n&players=3&max=6&";
    query += std::string(row.name) + "=" + row.value;
    Announcement announcement;
    const std::string fault = read(query, announcement);
    // A maximum below the number of players is reported as an error of `players`.
    const char* toBlame = row.value == "2" && row.name == std::string_view("max") ? "players" : row.name;
    EXPECT_EQ(fault, row.isFit ? "" : toBlame) << row.name << " " << row.value;
  }
}

TEST(PublishSchedule, StartsAtOnceAndRepeatsEveryFiveMinutes) {
  PublishSchedule schedule;
  EXPECT_EQ(schedule.due(), 0);
  schedule.begins(10'000);
  schedule.ends(true);
  EXPECT_EQ(schedule.due(), 310'000);
}

TEST(PublishSchedule, ChangedNumberOfPlayersIsAnnouncedOnceTenSecondsAfterTheLastTime) {
  PublishSchedule schedule;
  schedule.setPlayers(1);
  EXPECT_EQ(schedule.due(), 0);
  schedule.begins(10'000);
  schedule.setPlayers(2);  // while it is in progress
  schedule.ends(true);
  EXPECT_EQ(schedule.due(), 20'000);
  schedule.begins(20'000);
  schedule.ends(true);
  schedule.setPlayers(2);
  EXPECT_EQ(schedule.due(), 320'000);
  schedule.setPlayers(3);
  EXPECT_EQ(schedule.due(), 30'000);
  schedule.setPlayers(2);
  EXPECT_EQ(schedule.due(), 320'000) << "the list has the right number";
}

TEST(PublishSchedule, FailureIsRetriedAfterAMinute) {
  PublishSchedule schedule;
  schedule.begins(10'000);
  schedule.ends(false);
  EXPECT_EQ(schedule.due(), 70'000);
  schedule.setPlayers(1);
  EXPECT_EQ(schedule.due(), 70'000);
  schedule.begins(70'000);
  schedule.ends(true);
  EXPECT_EQ(schedule.due(), 370'000);
}

}  // namespace
}  // namespace kelvora::server
