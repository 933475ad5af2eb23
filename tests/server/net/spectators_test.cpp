// Spectators on real loopback sockets: their port, their link, and what they cost others.

#include <gtest/gtest.h>

#include <chrono>
#include <deque>
#include <filesystem>
#include <fstream>
#include <string>

#include "server/replays/roundFile.h"
#include "server/system/process.h"
#include "tests/server/net/runningServer.h"
#include "tests/server/net/tcpClient.h"
#include "tests/server/net/webAnswer.h"
#include "tests/server/net/webSocketClient.h"
#include "tests/support/temporaryFolder.h"

namespace kelvora::server {
namespace {

Options withSpectators(int count) {
  Options options;
  options.rules.speedFactor = 0;
  options.rules.spectators = count;
  return options;
}

TEST(SpectatorPort, ShowsPlayersWhoDontHearOfIt) {
  const RunningServer server(withSpectators(2));
  Client ann(server.port(), 20);
  ann.login("Ann");
  ASSERT_NE(ann.readUntil(wire::msgLoginAccepted), "nothing");
  Client sue(server.spectatorPort(), 21);
  sue.login("Sue");
  EXPECT_TRUE(sue.readUntil(wire::msgPlayerJoined).find("Ann") != std::string::npos);
  WebSocketClient tom(server.port(), 22);
  ASSERT_TRUE(tom.open({}, "/watch"));
  tom.send(login("Tom"));
  EXPECT_NE(tom.readUntil("You are watching.").find("Ann"), std::string::npos);
  tom.send(frameOf(wire::msgChat, {"-1", "nice"}));
  EXPECT_NE(tom.readUntil("[Tom, watching] nice").find("nice"), std::string::npos);
  std::string text;
  while (text.find("nice") == std::string::npos) {
    text = sue.readUntil(wire::msgServerText);
    ASSERT_NE(text, "nothing");
  }
  Client bob(server.port(), 23);
  bob.login("Bob");
  EXPECT_NE(sue.readUntil(wire::msgPlayerJoined).find("Bob"), std::string::npos);
  bob.say(wire::msgPositionReport, {"1234.5", ".5"});
  EXPECT_TRUE(sue.readUntil(wire::msgPosition).ends_with("1234.5\x82.5"));
  EXPECT_NE(tom.readUntil("1234.5\x82.5").find("1234.5"), std::string::npos);
  // Everything that Ann gets has come before Bob's position.
  std::string toAnn;
  for (std::string frame = ann.read(); !frame.empty(); frame = ann.read()) {
    toAnn += frame;
    if (static_cast<unsigned char>(frame[0]) == wire::msgPosition) break;
  }
  EXPECT_NE(toAnn.find("Bob"), std::string::npos);
  for (const char* unheard : {"Sue", "Tom", "nice"}) EXPECT_EQ(toAnn.find(unheard), std::string::npos) << unheard;
}

TEST(SpectatorPort, ServesBrowsersThatWatchToo) {
  const RunningServer server(withSpectators(1));
  WebSocketClient page(server.spectatorPort(), 20);
  ASSERT_TRUE(page.open());  // at /play, as the page that comes from this port does
  page.send(login("Sue"));
  EXPECT_NE(page.readUntil("You are watching.").find("watching"), std::string::npos);
  EXPECT_EQ(ask(server.port(), "GET / HTTP/1.0\r\n\r\n", 21).body.find("Sue"), std::string::npos);
}

TEST(SpectatorPort, IsTheOneAfterThePlayers) {
  Options options = withSpectators(1);
  options.port = 2010;
  EXPECT_EQ(options.portOfSpectators(), 2011);
  options.port = 0;
  EXPECT_EQ(options.portOfSpectators(), 0);
  options.spectatorPort = 99;
  EXPECT_EQ(options.portOfSpectators(), 99);
}

TEST(WatchLink, IsThePageOfTheGame) {
  const TemporaryFolder folder;
  std::ofstream(folder.path() / "index.html") << "the page";
  Options options = withSpectators(1);
  options.site = utf8FromPath(folder.path());
  {
    const RunningServer server(options);
    EXPECT_EQ(ask(server.port(), "GET /watch HTTP/1.0\r\n\r\n").body, "the page");
    EXPECT_EQ(ask(server.port(), "GET /watch/ HTTP/1.0\r\n\r\n").code(), 404);
    const WebAnswer arena = ask(server.port(), "GET /arena HTTP/1.0\r\n\r\n");
    EXPECT_NE(arena.body.find("port " + std::to_string(server.spectatorPort())), std::string::npos) << arena.body;
    EXPECT_NE(arena.body.find("<a href=\"/\">Play</a> or <a href=\"/watch\">watch</a>"), std::string::npos)
        << arena.body;
    const WebAnswer games = ask(server.port(), "GET /games HTTP/1.0\r\n\r\n");
    EXPECT_NE(games.body.find("/watch\""), std::string::npos) << games.body;
  }
  options.rules.spectators = 0;
  {
    const RunningServer server(options);
    const WebAnswer watch = ask(server.port(), "GET /watch HTTP/1.0\r\n\r\n");
    EXPECT_EQ(watch.code(), 404);
    EXPECT_NE(watch.body.find("<h1>Nobody can watch here</h1>"), std::string::npos) << watch.body;
    WebSocketClient client(server.port());
    EXPECT_FALSE(client.open({}, "/watch"));
    for (const char* page : {"arena", "games"}) {
      const WebAnswer answer = ask(server.port(), std::string("GET /") + page + " HTTP/1.0\r\n\r\n");
      EXPECT_EQ(answer.body.find("watch"), std::string::npos) << answer.body;
    }
  }
}

TEST(WatchLink, ObeysTheAllowedOrigins) {
  Options options = withSpectators(1);
  options.allowOrigin = "";
  const RunningServer server(options);
  WebSocketClient client(server.port());
  EXPECT_FALSE(client.open("Origin: http://elsewhere.example\r\n", "/watch"));
}

TEST(ShownRound, IsWatchedByEverybody) {
  const TemporaryFolder folder;
  const auto file = folder.path() / "shown.round";
  std::ofstream(file, std::ios::binary) << roundFile({});
  Options options;
  options.replayFile = utf8FromPath(file);
  {
    const RunningServer server(options);
    Client ann(server.port(), 20);
    ann.login("Ann");
    EXPECT_EQ(ann.readUntil(wire::msgAliveState), std::string("-1\x82") + "0");
    EXPECT_NE(ask(server.port(), "GET /metrics HTTP/1.0\r\n\r\n").body.find("\nkelvora_spectators 1\n"),
              std::string::npos);
  }
}

/// The number of spectators according to /metrics.
std::string spectatorsIn(const RunningServer& server) {
  const std::string page = ask(server.port(), "GET /metrics HTTP/1.0\r\n\r\n", 1).body;
  const std::string name = "\nkelvora_spectators ";
  const std::size_t at = page.find(name);
  return at == std::string::npos ? "" : page.substr(at + name.size(), page.find('\n', at + 1) - at - name.size());
}

TEST(SpectatorLimits, AFullServerKeepsItsSpectators) {
  const RunningServer server(withSpectators(32));
  std::deque<Client> spectators;
  for (std::uint32_t i = 0; i < 32; ++i) {
    spectators.emplace_back(server.spectatorPort(), 20 + i / 16);
    spectators.back().login("Sue" + std::to_string(i));
    ASSERT_NE(spectators.back().readUntil(wire::msgServerText), "nothing") << i;
  }
  EXPECT_EQ(spectatorsIn(server), "32");
  {
    Client late(server.spectatorPort(), 30);
    late.login("Late");
    EXPECT_NE(late.readUntil(wire::msgLoginDenied).find("no room for more spectators"), std::string::npos);
  }
  // Idle connections take the rest, and make room for a player.
  std::deque<TcpClient> idle;
  for (std::uint32_t i = 32; i < GameServer::maxConnections; ++i) idle.emplace_back(server.port(), 40 + i / 16);
  Client ann(server.port(), 60);
  ann.login("Ann");
  ASSERT_NE(ann.readUntil(wire::msgLoginAccepted), "nothing");
  ann.say(wire::msgChat, {"-1", "hello"});
  for (Client& spectator : spectators) EXPECT_NE(spectator.readUntil(wire::msgChat), "nothing");
}

TEST(SpectatorLimits, PositionsOfSpectatorsCountForNoRelay) {
  const RunningServer server(withSpectators(1));
  Client sue(server.spectatorPort(), 20);
  sue.login("Sue");
  sue.readUntil(wire::msgServerText);
  for (int i = 0; i < 5; ++i) sue.say(wire::msgPositionReport, {"1", "2"});
  sue.say(wire::msgChat, {"-1", "done"});
  sue.readUntil(wire::msgServerText);
  EXPECT_NE(ask(server.port(), "GET /metrics HTTP/1.0\r\n\r\n").body.find("\nkelvora_relay_seconds_count 0\n"),
            std::string::npos);
}

TEST(SpectatorLimits, AnUnreadSpectatorIsDroppedAndNobodyElse) {
  const RunningServer server(withSpectators(1));
  Client sue(server.spectatorPort(), 20);
  sue.keepLittleUnread();
  sue.login("Sue");
  Client ann(server.port(), 21);
  ann.login("Ann");
  Client bob(server.port(), 22);
  bob.login("Bob");
  const std::string line(3'500, 'x');
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  // Asking too often is refused, and tried again.
  std::string watching;
  while ((watching = spectatorsIn(server)) != "0" && std::chrono::steady_clock::now() < end) {
    // The server reads slowly, so the players read what they have sent before they send more.
    ann.say(wire::msgChat, {"-1", line});
    bob.say(wire::msgChat, {"-1", line});
    for (Client* player : {&ann, &bob}) {
      player->readUntil(wire::msgChat);
      player->readUntil(wire::msgChat);
    }
  }
  EXPECT_EQ(watching, "0");
  EXPECT_FALSE(ann.hasEnded());
  EXPECT_FALSE(bob.hasEnded());
}

}  // namespace
}  // namespace kelvora::server
