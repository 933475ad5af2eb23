#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "server/moderation/moderation.h"
#include "server/system/passwords.h"
#include "tests/server/arena/arenaTest.h"
#include "tests/server/moderation/fakeHost.h"

namespace kelvora::server {

/// Hashed once, because that takes long on purpose.
inline const std::string& hashOfOpenSesame() {
  static const std::string hash = hashOf("open-sesame");
  return hash;
}

/// An arena whose lines that begin with "!" reach its moderation.
class ModerationTest : public ArenaTest {
 protected:
  static constexpr ClientId dan = 4;
  static constexpr ClientId eve = 5;

  explicit ModerationTest(const ArenaRules& rules = quietRules) : ArenaTest(rules) {}

  FakeHost host;
  BotKeeper bots{arena, {}, "", KELVORA_VERSION, 1};
  RecordBook records{host, ""};
  Moderation moderation{arena, bots, records, host, {.moderatorHash = hashOfOpenSesame(), .bansFile = ""}};
  std::vector<std::pair<ClientId, std::string>> commands;

  void command(ClientId client, const std::string& line) override { commands.emplace_back(client, line); }
  Outcome mayEnter(ClientId client) override { return moderation.mayEnter(host.network(client)); }
  std::string muteReason(ClientId client) override { return moderation.muteReason(host.network(client)); }

  /// Sends a chat line, and returns what the sender gets from the server.
  std::vector<std::string> chat(ClientId client, const std::string& text, const std::string& target = "-1") {
    got.clear();
    say(client, wire::msgChat, {target, text});
    for (const auto& [from, line] : std::exchange(commands, {})) moderation.run(from, line, now);
    leaveHungUp();
    now += 500;  // the flood limit
    return textsTo(client);
  }
  std::string answerTo(ClientId client, const std::string& text) {
    const auto lines = chat(client, text);
    return lines.size() == 1 ? lines[0] : std::to_string(lines.size()) + " lines";
  }
  std::vector<std::string> textsTo(ClientId client) {
    std::vector<std::string> texts;
    for (const Fields& fields : all(client, wire::msgServerText)) texts.push_back(fields.at(0));
    return texts;
  }
  void leaveHungUp() {
    for (const ClientId client : std::exchange(hungUp, {})) {
      arena.disconnected(client);
      moderation.left(client);
    }
  }
  void passTime(Millis time) {
    got.clear();
    pass(time);
    moderation.tick(now);
    leaveHungUp();
  }
  bool isIn(ClientId client) {
    const auto players = arena.players(now);
    return std::ranges::any_of(players, [&](const PlayerView& player) { return player.client == client; });
  }
  void becomeModerator(ClientId client) {
    chat(client, "!login open-sesame");
    got.clear();
    host.finishWork();
    EXPECT_EQ(textsTo(client), (std::vector<std::string>{"You are a moderator now. !help lists your commands."}));
    got.clear();
  }
  void loginThree() {
    login(ann, "Ann", "0");
    login(bob, "Bob", "1");
    login(cat, "Cat", "2");
  }
};

}  // namespace kelvora::server
