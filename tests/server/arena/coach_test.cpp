#include "server/arena/coach.h"

#include "server/arena/names.h"
#include "tests/server/arena/arenaTest.h"

namespace kelvora::server {
namespace {

const ArenaRules coached = [] {
  ArenaRules rules = quietRules;
  rules.coach = true;
  rules.respawnWaitMs = 0;
  return rules;
}();

class CoachTest : public ArenaTest {
 protected:
  CoachTest() : ArenaTest(coached) {}

  /// The coach's lines to a client in that time, in ticks of 40 ms.
  std::vector<std::string> wait(ClientId client, Millis time) {
    got.clear();
    for (const Millis end = now + time; now < end;) pass(40);
    std::vector<std::string> texts;
    for (const Fields& fields : all(client, wire::msgServerText)) {
      if (fields.at(0) != "Press Spawn for a new life.") texts.push_back(fields.at(0));
    }
    return texts;
  }
  using Lines = std::vector<std::string>;
};

const std::string brakesLine =
    "Your brakes are on. Press the right mouse button, or Brakes on a touch screen, and steer.";
const std::string circleLine = "Circle Bob (Yellow) and cross your own tail to capture them.";

TEST_F(CoachTest, PeopleWhoDontMoveLearnOfTheBrakesOnce) {
  login(ann, "Ann");
  EXPECT_EQ(wait(ann, 3'960), Lines{});
  EXPECT_EQ(wait(ann, 40), Lines{brakesLine});
  EXPECT_EQ(wait(ann, 60'000), Lines{});
}

TEST_F(CoachTest, PeopleWhoMoveNeedNoBrakes) {
  login(ann, "Ann");
  report(ann, 50'000, 50'000);
  report(ann, 50'100, 50'000);
  EXPECT_EQ(wait(ann, 60'000), Lines{});
}

TEST_F(CoachTest, AMovingNewcomerLearnsWhoIsNearestAndWhere) {
  login(bob, "Bob", "1");
  login(cat, "Cat", "2");
  report(bob, 20'000, 30'000);
  report(cat, 90'000, 90'000);
  login(ann, "Ann", "0");
  report(ann, 30'000, 40'000);
  EXPECT_EQ(wait(ann, 40), Lines{"Bob (Yellow) is the nearest player, above you to the left."});
  EXPECT_EQ(wait(ann, 30'000), Lines{}) << "nobody is near";
}

TEST_F(CoachTest, NearSomebodyTheCircleIsExplained) {
  login(bob, "Bob", "1");
  report(bob, 20'000, 30'000);
  login(ann, "Ann", "0");
  report(ann, 26'001, 30'000);
  EXPECT_EQ(wait(ann, 40).size(), 1U);
  EXPECT_EQ(wait(ann, 8'000), Lines{});
  report(ann, 26'000, 30'000);
  EXPECT_EQ(wait(ann, 40), Lines{circleLine});
}

TEST_F(CoachTest, LinesCanBeReadBeforeTheNextOne) {
  login(bob, "Bob", "1");
  report(bob, 20'000, 30'000);
  login(ann, "Ann", "0");
  report(ann, 21'000, 30'000);
  EXPECT_EQ(wait(ann, 4'000).size(), 1U);
  EXPECT_EQ(wait(ann, 40), Lines{circleLine});
}

TEST_F(CoachTest, TheGameBreaksNoLineInTwo) {
  constexpr std::size_t longestLine = 90;  // of the game's console
  const std::string longestName(maxNameLength, 'm');
  login(bob, longestName, "5");
  report(bob, 20'000, 30'000);
  login(ann, "Ann", "0");
  Lines lines = wait(ann, 4'000);
  report(ann, 24'000, 34'000);
  for (const std::string& line : wait(ann, 8'000)) lines.push_back(line);
  const std::string name = longestName + " (Purple)";
  EXPECT_EQ(lines, (Lines{brakesLine, name + " is the nearest player, above you to the left.",
                          "Circle " + name + " and cross your own tail to capture them."}));
  for (const std::string& line : lines) EXPECT_LE(line.size(), longestLine) << line;
}

TEST_F(CoachTest, TheFirstCaptureIsPraised) {
  login(bob, "Bob", "1");
  report(bob, 50'000, 50'000);
  login(ann, "Ann", "0");
  report(ann, 49'000, 49'000);
  EXPECT_EQ(wait(ann, 8'040).size(), 2U);
  capture(ann, bob);
  EXPECT_EQ(wait(ann, 40), Lines{"Well done! A capture earns 10 credits. The most captures win the round."});
  EXPECT_EQ(wait(bob, 40), Lines{});
}

TEST_F(CoachTest, PeopleWhoCaptureAtOnceHearNothing) {
  login(bob, "Bob", "1");
  login(ann, "Ann", "0");
  capture(ann, bob);
  EXPECT_EQ(wait(ann, 60'000), Lines{});
}

TEST_F(CoachTest, ACapturedNewcomerHearsHowToComeBack) {
  login(bob, "Bob", "1");
  pass(40);
  login(ann, "Ann", "0");
  capture(ann, bob);
  EXPECT_EQ(wait(bob, 40), Lines{"You are out, and fly on as a ghost until you press Spawn."});
  EXPECT_EQ(wait(bob, 8'000), Lines{});
}

TEST_F(CoachTest, TheFirstTwentyCreditsLeadToTheStore) {
  login(bob, "Bob", "1");
  login(ann, "Ann", "0");
  report(ann, 30'000, 40'000);
  EXPECT_EQ(wait(ann, 8'040).size(), 1U);
  capture(bob, ann);
  EXPECT_EQ(view(bob).funds, 20);
  login(cat, "Cat", "2");
  EXPECT_EQ(wait(cat, 3'960), Lines{}) << "starts with 10";
}

TEST_F(CoachTest, PeopleWithTwentyCreditsAreSentToTheStore) {
  login(bob, "Bob", "1");
  report(bob, 50'000, 50'000);
  login(ann, "Ann", "0");
  report(ann, 49'000, 49'000);
  wait(ann, 8'040);
  capture(ann, bob);
  EXPECT_EQ(wait(ann, 8'040).back(), "You have 20 credits. Press Store to buy a powerup, and F1 to F6 to use it.");
  EXPECT_EQ(wait(ann, 20'000), Lines{});
}

TEST_F(CoachTest, BotsAreNotCoached) {
  login(firstBotClient, "Lumo");
  EXPECT_EQ(wait(firstBotClient, 20'000), Lines{});
}

TEST_F(ArenaTest, WithoutACoachNobodyIsCoached) {
  login(ann, "Ann");
  pass(10'000);
  EXPECT_TRUE(all(ann, wire::msgServerText).empty());
}

TEST(Directions, AreThoseOfTheScreen) {
  EXPECT_EQ(directionOf({5, 0}), "to your right");
  EXPECT_EQ(directionOf({5, 5}), "below you to the right");
  EXPECT_EQ(directionOf({0, 5}), "below you");
  EXPECT_EQ(directionOf({-5, 5}), "below you to the left");
  EXPECT_EQ(directionOf({-5, 0}), "to your left");
  EXPECT_EQ(directionOf({-5, -0.1}), "to your left");
  EXPECT_EQ(directionOf({-5, -5}), "above you to the left");
  EXPECT_EQ(directionOf({0, -5}), "above you");
  EXPECT_EQ(directionOf({5, -5}), "above you to the right");
  EXPECT_EQ(directionOf({5, -2}), "to your right");
}

}  // namespace
}  // namespace kelvora::server
