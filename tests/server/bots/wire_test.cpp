// A bot sends only messages that a client could send.

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "base/text.h"
#include "protocol/messages.h"
#include "tests/server/bots/contest.h"

namespace kelvora::server {
namespace {

int idOf(const Contest::Said& said) { return said.message.id; }

Point placeOf(const Contest::Said& said) {
  return {readNumber(said.message.fields.at(0)), readNumber(said.message.fields.at(1))};
}

/// Two minutes of one bot of each level, six in all.
class BotWire : public testing::Test {
 protected:
  BotWire() {
    contest.listen();
    for (const SkillLevel level : {SkillLevel::easy, SkillLevel::normal, SkillLevel::hard}) {
      contest.addBot(level);
      contest.addBot(level);
    }
  }
  std::vector<Contest::Said> reports(int player) const {
    std::vector<Contest::Said> found;
    for (const auto& said : contest.said()) {
      if (said.player == player && idOf(said) == wire::msgPositionReport) found.push_back(said);
    }
    return found;
  }

  Contest contest{7};
};

TEST_F(BotWire, NoStepIsLongerThanTheGameAllows) {
  contest.pass(120'000);
  double longest = 0;
  for (int player = 1; player <= 6; ++player) {
    std::optional<Point> last;
    for (const auto& report : reports(player)) {
      const Point place = placeOf(report);
      EXPECT_TRUE(place.x >= 0 && place.x <= 100'000 && place.y >= 0 && place.y <= 100'000)
          << testing::PrintToString(report.message);
      if (last) {
        // Four frames at 300, times 3 with a turbo, and times 2 for a ghost. A bounce adds a thousand inward on either
        // axis.
        const double step = flightLength(place - *last);
        EXPECT_LE(step, 4 * 300 * 3 * 2 + 2'000);
        const bool isByTheEdge = place.x < 8'200 || place.x > 91'800 || place.y < 8'200 || place.y > 91'800;
        if (!isByTheEdge) longest = std::max(longest, step);
      }
      last = place;
    }
  }
  EXPECT_GT(longest, 1'150) << "hard bots use their speed";
}

TEST_F(BotWire, WithoutTurboALivingBotFliesTwelveHundredPerReport) {
  // Easy bots can't afford a turbo before their first death.
  Contest alone(3);
  alone.listen();
  alone.addBot(SkillLevel::hard);
  alone.pass(30'000);
  std::optional<Point> last;
  int steps = 0;
  for (const auto& said : alone.said()) {
    if (idOf(said) != wire::msgPositionReport) continue;
    const Point place = placeOf(said);
    if (last) {
      EXPECT_LE(flightLength(place - *last), 1'200 + 0.1);
    }
    last = place;
    ++steps;
  }
  EXPECT_GT(steps, 600);
}

TEST_F(BotWire, TheArenaAcceptsEveryReport) {
  contest.pass(120'000);
  std::size_t reported = 0;
  for (int player = 1; player <= 6; ++player) reported += reports(player).size();
  // All have been in since the start, so each got an echo of everything.
  EXPECT_EQ(static_cast<std::size_t>(contest.sent(1, wire::msgPosition)), reported);
}

TEST_F(BotWire, ReportsOncePerFortyMs) {
  contest.pass(60'000);
  for (int player = 1; player <= 6; ++player) {
    std::map<Millis, int> atOnce;
    for (const auto& report : reports(player)) ++atOnce[report.at];
    for (const auto& [at, count] : atOnce) EXPECT_LE(count, 2) << "one, and one with the reply to a ping";
    EXPECT_GT(reports(player).size(), 300U) << player;
  }
}

TEST_F(BotWire, AnswersEveryPing) {
  contest.pass(30'000);
  for (int player = 1; player <= 6; ++player) {
    int replies = 0;
    for (const auto& said : contest.said()) {
      replies += said.player == player && idOf(said) == wire::msgPingReply ? 1 : 0;
    }
    EXPECT_EQ(replies, contest.sent(player, wire::msgPing)) << player;
    EXPECT_EQ(contest.sent(player, wire::msgLatencyReport), replies) << player;
  }
}

TEST_F(BotWire, StandsStillForAMomentAfterJoining) {
  contest.pass(200);
  for (int player = 1; player <= 6; ++player) EXPECT_TRUE(reports(player).empty()) << player;
  contest.pass(2'400);
  for (int player = 1; player <= 6; ++player) EXPECT_FALSE(reports(player).empty()) << player;
}

TEST_F(BotWire, RespawnedBotRollsToAStopWithTheBrakesOn) {
  contest.pass(60'000);
  int checked = 0;
  for (int tick = 0; tick < 1'500; ++tick) {
    std::map<int, bool> wasAlive;
    for (int player = 1; player <= 6; ++player) wasAlive[player] = contest.player(player).isAlive;
    contest.pass(40);
    std::map<int, std::size_t> risen;
    for (int player = 1; player <= 6; ++player) {
      if (!wasAlive[player] && contest.player(player).isAlive) risen[player] = reports(player).size();
    }
    if (risen.empty()) continue;
    // No bot releases the brakes in the first 200 ms: each step is shorter than the previous one, or there is none.
    contest.pass(120);
    for (const auto& [player, count] : risen) {
      const auto all = reports(player);
      double longest = 1e9;
      for (std::size_t i = std::max<std::size_t>(count, 1); i < all.size(); ++i) {
        const double step = flightLength(placeOf(all[i]) - placeOf(all[i - 1]));
        EXPECT_LE(step, longest + 0.1);
        longest = step;
      }
      ++checked;
    }
  }
  EXPECT_GE(checked, 5);
}

TEST_F(BotWire, RequestsASpawnAHumanMomentAfterSeeingItsDeath) {
  contest.pass(120'000);
  int asked = 0;
  for (const auto& said : contest.said()) asked += idOf(said) == wire::msgSpawnRequest ? 1 : 0;
  EXPECT_GE(asked, 10);
  for (int player = 1; player <= 6; ++player) EXPECT_EQ(contest.sent(player, wire::msgSpawnDenied), 0) << player;
}

TEST_F(BotWire, SendsOnlyMessagesThatTheArenaKnows) {
  contest.pass(120'000);
  const std::set<int> known = {wire::msgLogin,        wire::msgPositionReport, wire::msgPingReply,      wire::msgChat,
                               wire::msgSpawnRequest, wire::msgBuyRequest,     wire::msgActivateRequest};
  for (const auto& said : contest.said()) EXPECT_TRUE(known.contains(idOf(said))) << idOf(said);
}

TEST_F(BotWire, ABuyIsNeverRefused) {
  contest.pass(300'000);
  int bought = 0;
  for (int player = 1; player <= 6; ++player) {
    EXPECT_EQ(contest.sent(player, wire::msgBuyDenied), 0) << player;
    bought += contest.sent(player, wire::msgBuyAccepted);
  }
  EXPECT_GT(bought, 5);
}

TEST_F(BotWire, ChatsRarelyAndInPlainAscii) {
  contest.pass(600'000);
  std::map<int, Millis> last;
  int lines = 0;
  for (const auto& said : contest.said()) {
    if (idOf(said) != wire::msgChat) continue;
    ++lines;
    const auto& fields = said.message.fields;
    ASSERT_EQ(fields.size(), 2U);
    EXPECT_EQ(fields[0], "-1") << "to everybody";
    for (const char c : fields[1]) EXPECT_TRUE(c >= 32 && c < 127) << fields[1];
    EXPECT_LT(fields[1].size(), 56U);
    if (last.contains(said.player)) {
      EXPECT_GE(said.at - last[said.player], 60'000);
    }
    last[said.player] = said.at;
  }
  EXPECT_GE(lines, 3);
  EXPECT_LE(lines, 60);
}

}  // namespace
}  // namespace kelvora::server
