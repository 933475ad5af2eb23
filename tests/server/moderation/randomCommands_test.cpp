#include <random>

#include "server/moderation/commandLine.h"
#include "tests/server/moderation/moderationTest.h"

namespace kelvora::server {
namespace {

// A command, then words that commands look for and random ones.
TEST_F(ModerationTest, RandomCommandLinesDoNoHarm) {
  std::mt19937 random(11);
  std::string_view all =
      "!help !who !vote kick restart yes !login !kick !ban !unban !mute !unmute !bans !say !bots !skill !restart !end "
      "!top !stats !claim 2h forever Ann bob Cat red hard 3 -1 99999999999999999999 192.0.2.2 ::1/64 \" ! (private) "
      "%s%n open-sesame";
  std::vector<std::string> words = {" "};
  while (!all.empty()) words.emplace_back(takeWord(all));
  loginThree();
  becomeModerator(ann);
  for (int round = 0; round < 4'000; ++round) {
    std::string line = words[random() % words.size()];
    if (!line.starts_with("!")) line = "!" + line;
    for (auto more = random() % 6; more > 0; --more) {
      line += ' ';
      if (random() % 8 == 0) {
        for (auto length = random() % 300; length > 0; --length) {
          const char c = static_cast<char>(random());
          if (c != wire::frameStart && c != wire::frameEnd && c != wire::fieldSeparator) line += c;
        }
      } else {
        line += words[random() % words.size()];
      }
    }
    const ClientId client = ann + static_cast<ClientId>(random() % 3);
    if (!isIn(client)) {
      arena.connected(client, now);
      say(client, wire::msgLogin, {"P" + std::to_string(client), "", "0", KELVORA_VERSION});
      leaveHungUp();
    }
    chat(client, line);
    for (const Message& message : got[client]) EXPECT_NE(message.id, wire::msgChat) << line;
    if (random() % 4 == 0) host.finishWork();
    if (random() % 16 == 0) {
      host.time += 600;
      passTime(1'000);
    }
    ASSERT_LE(moderation.count(PenaltyKind::ban) + moderation.count(PenaltyKind::mute), 6U);
    ASSERT_LE(host.pendingWork(), 3U);
  }
  for (const auto* lines : {&host.lines, &host.acts}) {
    EXPECT_FALSE(lines->empty());
    for (const std::string& line : *lines) {
      for (const char c : line) ASSERT_TRUE(c >= ' ' && c <= '~') << line;
    }
  }
}

}  // namespace
}  // namespace kelvora::server
