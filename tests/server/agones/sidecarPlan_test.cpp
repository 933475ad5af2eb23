#include "server/agones/sidecarPlan.h"

#include <gtest/gtest.h>

#include <string>

namespace kelvora::server {
namespace {

using Call = SidecarPlan::Call;
using Result = SidecarPlan::Result;

constexpr const char* names[] = {"ready", "health", "allocate", "place", "players", "shutdown"};

/// Makes all calls that are due, with this result. Returns their names.
std::string tell(SidecarPlan& plan, Millis now, Result result = Result::done) {
  std::string calls;
  for (int limit = 0; limit < 10; ++limit) {
    const auto call = plan.next(now);
    if (!call) break;
    calls += std::string(calls.empty() ? "" : " ") + names[static_cast<std::size_t>(*call)];
    plan.ended(*call, plan.players(), result, now);
  }
  return calls;
}

/// A plan whose server is ready at this time, without players.
SidecarPlan ready(Millis now) {
  SidecarPlan plan;
  plan.update(0, now);
  EXPECT_EQ(tell(plan, now), "ready health place players");
  return plan;
}

TEST(SidecarPlan, TellsNothingBeforeTheServerWorks) {
  const SidecarPlan plan;
  EXPECT_FALSE(plan.next(50'000));
  EXPECT_EQ(plan.wait(50'000), 2'000);
}

TEST(SidecarPlan, RepeatsReadyEverySecondUntilItIsHeard) {
  SidecarPlan plan;
  plan.update(3, 10'000);
  EXPECT_EQ(tell(plan, 10'000, Result::failed), "ready");
  EXPECT_EQ(plan.wait(10'000), 1'000);
  EXPECT_EQ(tell(plan, 10'999), "");
  EXPECT_EQ(tell(plan, 11'000, Result::unknown), "ready") << "the sidecar may only be starting";
  EXPECT_EQ(tell(plan, 12'000), "ready health allocate place players");
  EXPECT_EQ(tell(plan, 12'001), "");
}

TEST(SidecarPlan, TellsEveryTwoSecondsThatTheServerWorks) {
  SidecarPlan plan = ready(10'000);
  EXPECT_EQ(plan.wait(10'500), 1'500);
  EXPECT_EQ(tell(plan, 11'999), "");
  EXPECT_EQ(tell(plan, 12'000, Result::failed), "health");
  EXPECT_EQ(tell(plan, 13'999), "");
  EXPECT_EQ(tell(plan, 14'000), "health");
}

TEST(SidecarPlan, ServerThatHangsIsNotHealthy) {
  SidecarPlan plan = ready(10'000);
  EXPECT_EQ(tell(plan, 19'999), "health");
  EXPECT_EQ(tell(plan, 22'000), "");
  plan.update(0, 23'000);
  EXPECT_EQ(tell(plan, 23'000), "health");
}

TEST(SidecarPlan, AllocatesForTheFirstPersonAndIsReadyAgainAfterTheLast) {
  SidecarPlan plan = ready(10'000);
  plan.update(1, 10'100);
  EXPECT_EQ(tell(plan, 10'100), "allocate players");
  plan.update(2, 10'200);
  EXPECT_EQ(tell(plan, 10'200), "players");
  plan.update(0, 10'300);
  EXPECT_EQ(tell(plan, 10'300), "ready players");
  plan.update(1, 10'400);
  EXPECT_EQ(tell(plan, 10'400), "allocate players");
}

TEST(SidecarPlan, ServerThatSomebodyElseAllocatedStaysSoUntilPeopleHaveLeft) {
  SidecarPlan plan = ready(10'000);
  for (Millis now = 10'000; now < 60'000; now += 2'000) {
    plan.update(0, now);
    EXPECT_NE(plan.next(now), Call::ready);
    tell(plan, now);
  }
}

TEST(SidecarPlan, AsksForThePlaceUntilItIsKnown) {
  SidecarPlan plan;
  plan.update(0, 10'000);
  EXPECT_NE(plan.next(10'000), Call::place);
  plan.ended(Call::ready, 0, Result::done, 10'000);
  for (const Millis now : {10'000, 11'000}) {
    plan.ended(Call::health, 0, Result::done, now);
    ASSERT_EQ(plan.next(now), Call::place);
    plan.ended(Call::place, 0, Result::failed, now);
    EXPECT_NE(plan.next(now + 999), Call::place);
  }
  EXPECT_EQ(tell(plan, 12'000), "place players");
}

TEST(SidecarPlan, AFailedCallDelaysNoOther) {
  SidecarPlan plan = ready(10'000);
  plan.update(1, 11'500);
  EXPECT_EQ(tell(plan, 11'500, Result::failed), "allocate players");
  EXPECT_EQ(tell(plan, 12'000), "health");
  EXPECT_EQ(tell(plan, 12'500), "allocate players");
}

TEST(SidecarPlan, NumberThatChangedDuringItsCallIsToldAgain) {
  SidecarPlan plan = ready(10'000);
  plan.update(1, 10'100);
  tell(plan, 10'100);
  plan.update(2, 10'200);
  ASSERT_EQ(plan.next(10'200), Call::players);
  plan.update(3, 10'250);
  plan.ended(Call::players, 2, Result::done, 10'300);
  EXPECT_EQ(plan.next(10'300), Call::players);
  EXPECT_EQ(plan.players(), 3U);
}

TEST(SidecarPlan, WithoutACounterPlayersAreNotTold) {
  SidecarPlan plan;
  plan.update(0, 10'000);
  ASSERT_EQ(plan.next(10'000), Call::ready);
  plan.ended(Call::ready, 0, Result::done, 10'000);
  plan.ended(Call::place, 0, Result::done, 10'000);
  plan.ended(Call::players, 0, Result::unknown, 10'000);
  plan.update(1, 12'000);
  EXPECT_EQ(tell(plan, 12'000), "health allocate");
}

TEST(SidecarPlan, AfterTheEndOnlyThatIsTold) {
  SidecarPlan plan = ready(10'000);
  plan.update(1, 20'000);
  plan.finish();
  EXPECT_EQ(tell(plan, 20'000, Result::failed), "shutdown");
  EXPECT_FALSE(plan.isOver());
  EXPECT_EQ(plan.wait(20'400), 600);
  EXPECT_EQ(tell(plan, 21'000), "shutdown");
  EXPECT_TRUE(plan.isOver());
  EXPECT_EQ(tell(plan, 25'000), "");
}

}  // namespace
}  // namespace kelvora::server
