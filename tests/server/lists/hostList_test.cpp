#include "server/lists/hostList.h"

#include <gtest/gtest.h>

#include <array>

#include "generated/version.h"

namespace kelvora::server {
namespace {

HostEntry host(bool password, std::size_t players) {
  return {.address = "192.0.2.7",
          .port = 2010,
          .passwordRequired = password,
          .notes = "friendly game",
          .players = players,
          .maxPlayers = 6};
}

TEST(HostList, ARecordHasSixFieldsInBrackets) {
  EXPECT_EQ(hostRecord(host(false, 3)), "[192.0.2.7|2010|0|friendly game|3|6]");
  EXPECT_EQ(hostRecord(host(true, 0)), "[192.0.2.7|2010|1|friendly game|0|6]");
}

TEST(HostList, TextsCannotBreakTheRecordOrTheList) {
  HostEntry evil = host(false, 0);
  evil.notes = "a|b[c]d\r\n\t\x14\x7F-END-|x";
  evil.address = "[::1]";
  EXPECT_EQ(hostRecord(evil), "[ ::1 |2010|0|a b c d      END- x|0|6]");
}

TEST(HostList, DefaultEntryIsNotListed) {
  EXPECT_FALSE(matches(HostEntry{}, KELVORA_VERSION, {.version = KELVORA_VERSION}));
}

TEST(HostList, OnlyTheSameVersionMatches) {
  for (const char* version : {"", "1.2", KELVORA_VERSION "0", KELVORA_VERSION " ", "0" KELVORA_VERSION}) {
    EXPECT_FALSE(matches(host(false, 3), KELVORA_VERSION, {.version = version})) << version;
  }
  EXPECT_TRUE(matches(host(false, 3), KELVORA_VERSION, {.version = KELVORA_VERSION}));
}

TEST(HostList, EachFlagHidesItsOwnKindOfHost) {
  struct Row {
    bool password;
    std::size_t players;
    // For the flags password, full, empty: 000, 001, 010, 011, 100, 101, 110, 111.
    std::array<bool, 8> shown;
  };
  const Row rows[] = {
      {false, 0, {false, true, false, true, false, true, false, true}},
      {false, 1, {true, true, true, true, true, true, true, true}},
      {false, 5, {true, true, true, true, true, true, true, true}},
      {false, 6, {false, false, true, true, false, false, true, true}},
      {true, 0, {false, false, false, false, false, true, false, true}},
      {true, 1, {false, false, false, false, true, true, true, true}},
      {true, 6, {false, false, false, false, false, false, true, true}},
  };
  for (const Row& row : rows) {
    for (std::size_t flags = 0; flags < 8; ++flags) {
      const HostQuery query{.version = KELVORA_VERSION,
                            .withPassword = (flags & 4) != 0,
                            .withFull = (flags & 2) != 0,
                            .withEmpty = (flags & 1) != 0};
      EXPECT_EQ(matches(host(row.password, row.players), KELVORA_VERSION, query), row.shown.at(flags))
          << "password " << row.password << ", players " << row.players << ", flags " << flags;
    }
  }
}

// Clients read ports as signed 16-bit numbers, and end with a fault at a larger one.
TEST(HostList, PortThatClientsCannotUseIsNotListed) {
  HostEntry entry = host(false, 3);
  entry.port = 32'766;
  EXPECT_TRUE(matches(entry, KELVORA_VERSION, {.version = KELVORA_VERSION}));
  for (const int port : {32'767, 32'768, 65'535}) {
    entry.port = static_cast<std::uint16_t>(port);
    EXPECT_FALSE(matches(entry, KELVORA_VERSION, {.version = KELVORA_VERSION})) << port;
  }
}

}  // namespace
}  // namespace kelvora::server
