// How well the bots play, measured in matches on a clock set by hand.

#include "server/bots/skill.h"

#include <gtest/gtest.h>

#include "tests/server/bots/contest.h"
#include "tests/support/shortTests.h"

namespace kelvora::server {
namespace {

constexpr int seeds = hasShortTests ? 3 : 10;
constexpr Millis threeMinutes = 180'000;

struct Score {
  int first = 0;
  int second = 0;
};

TEST(BotSkill, WordsNameTheLevels) {
  EXPECT_EQ(skillLevel("easy"), SkillLevel::easy);
  EXPECT_EQ(skillLevel("normal"), SkillLevel::normal);
  EXPECT_EQ(skillLevel("hard"), SkillLevel::hard);
  EXPECT_EQ(skillLevel("mixed"), SkillLevel::mixed);
  EXPECT_FALSE(skillLevel("Hard"));
  EXPECT_FALSE(skillLevel(""));
}

TEST(BotSkill, BeginnerCapturesAnEasyBotWithinThreeMinutes) {
  int successes = 0;
  for (std::uint32_t seed = 1; seed <= seeds; ++seed) {
    Contest contest(seed);
    const int beginner = contest.addBeginner();
    for (int i = 0; i < 3; ++i) contest.addBot(SkillLevel::easy);
    contest.pass(threeMinutes);
    successes += contest.firstCapture(beginner) >= 0 ? 1 : 0;
  }
  EXPECT_GE(successes, seeds * 8 / 10);
}

TEST(BotSkill, BeginnerBeatsASingleEasyBot) {
  Score score;
  for (std::uint32_t seed = 1; seed <= seeds; ++seed) {
    Contest contest(seed);
    const int beginner = contest.addBeginner();
    const int bot = contest.addBot(SkillLevel::easy);
    contest.pass(threeMinutes);
    score.first += contest.captures(beginner, bot);
    score.second += contest.captures(bot, beginner);
  }
  EXPECT_GT(score.first, score.second);
}

TEST(BotSkill, AHardBotOutplaysABeginner) {
  Score score;
  for (std::uint32_t seed = 1; seed <= seeds; ++seed) {
    Contest contest(seed);
    const int beginner = contest.addBeginner();
    const int bot = contest.addBot(SkillLevel::hard);
    contest.pass(threeMinutes);
    score.first += contest.captures(beginner, bot);
    score.second += contest.captures(bot, beginner);
  }
  EXPECT_GT(score.first, 0) << "nobody is out of reach";
  EXPECT_GT(score.second, 2 * score.first);
}

Score match(SkillLevel first, SkillLevel second) {
  Score score;
  for (std::uint32_t seed = 1; seed <= seeds; ++seed) {
    Contest contest(seed);
    contest.addBot(first);
    contest.addBot(second);
    contest.pass(threeMinutes);
    score.first += contest.captures(1, 2);
    score.second += contest.captures(2, 1);
  }
  return score;
}

TEST(BotSkill, HardBeatsEasyThreeToOne) {
  const Score score = match(SkillLevel::hard, SkillLevel::easy);
  EXPECT_GE(score.first, 3 * score.second);
  EXPECT_GE(score.first, 3 * seeds) << "more than one per minute";
}

TEST(BotSkill, NormalIsBetweenEasyAndHard) {
  const Score withEasy = match(SkillLevel::normal, SkillLevel::easy);
  EXPECT_GT(withEasy.first, withEasy.second);
  const Score withHard = match(SkillLevel::hard, SkillLevel::normal);
  EXPECT_GT(withHard.first, withHard.second);
}

}  // namespace
}  // namespace kelvora::server
