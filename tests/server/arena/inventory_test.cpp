#include "server/arena/inventory.h"

#include <gtest/gtest.h>

#include <vector>

namespace kelvora::server {
namespace {

constexpr Millis start = 1'000'000;

/// One with that many credits, of which it began with 10.
Inventory withFunds(int credits) {
  Inventory inventory;
  inventory.book(Entry::capture, credits - 10);
  EXPECT_EQ(inventory.funds(), credits);
  return inventory;
}

TEST(Inventory, BeginsWithTenCreditsAndNothing) {
  const Inventory inventory;
  EXPECT_EQ(inventory.funds(), 10);
  EXPECT_EQ(inventory.totalStock(), 0);
  for (int item = 0; item < 6; ++item) EXPECT_FALSE(inventory.isRunning(item, 0)) << item;
}

TEST(Inventory, EachItemCostsItsPriceAndGivesBackHalf) {
  constexpr int prices[] = {20, 10, 30, 20, 20, 70};
  constexpr int resale[] = {10, 5, 15, 10, 10, 35};
  for (int item = 0; item < 6; ++item) {
    Inventory exact = withFunds(prices[item]);
    EXPECT_EQ(exact.buy(item).reason(), "") << item;
    EXPECT_EQ(exact.funds(), 0) << item;
    EXPECT_EQ(exact.stock(item), 1) << item;
    EXPECT_EQ(exact.totalStock(), 1) << item;
    EXPECT_EQ(exact.sell(item).reason(), "") << item;
    EXPECT_EQ(exact.funds(), resale[item]) << item;
    EXPECT_EQ(exact.totalStock(), 0) << item;

    Inventory oneShort = withFunds(prices[item] - 1);
    EXPECT_NE(oneShort.buy(item).reason(), "") << item;
    EXPECT_EQ(oneShort.funds(), prices[item] - 1) << item;
    EXPECT_EQ(oneShort.totalStock(), 0) << item;
  }
}

TEST(Inventory, RefusesInClearWords) {
  Inventory inventory;
  EXPECT_EQ(inventory.buy(0).reason(), "Shield costs 20 credits. You have 10 credits.");
  EXPECT_EQ(withFunds(1).buy(5).reason(), "EMP costs 70 credits. You have 1 credit.");
  EXPECT_EQ(inventory.sell(3).reason(), "You have nothing to sell of this kind: Extra Long Tail.");
  for (const int item : {-1, 6, -32'768, 32'767}) {
    EXPECT_EQ(inventory.buy(item).reason(), "The store has no such powerup.") << item;
    EXPECT_EQ(inventory.sell(item).reason(), "The store has no such powerup.") << item;
    EXPECT_EQ(inventory.stock(item), 0) << item;
  }
  EXPECT_EQ(inventory.funds(), 10);
}

TEST(Inventory, HoldsTenOfAllKindsTogether) {
  Inventory inventory = withFunds(300);
  for (int i = 0; i < 7; ++i) EXPECT_EQ(inventory.buy(1).reason(), "");  // 70
  EXPECT_EQ(inventory.buy(5).reason(), "");                              // 70
  EXPECT_EQ(inventory.buy(2).reason(), "");                              // 30
  EXPECT_EQ(inventory.buy(0).reason(), "");                              // 20
  EXPECT_EQ(inventory.funds(), 110);
  EXPECT_EQ(inventory.totalStock(), 10);
  for (int item = 0; item < 6; ++item) {
    EXPECT_EQ(inventory.buy(item).reason(), "You cannot carry more than 10 powerups. Use or sell one first.") << item;
  }
  EXPECT_EQ(inventory.funds(), 110);
  EXPECT_EQ(inventory.sell(5).reason(), "");  // 35 back
  EXPECT_EQ(inventory.buy(3).reason(), "");   // 20
  EXPECT_EQ(inventory.funds(), 125);
  EXPECT_TRUE(inventory.start(3, start));
  EXPECT_EQ(inventory.buy(4).reason(), "") << "one that runs takes no room";
  EXPECT_EQ(inventory.funds(), 105);
}

TEST(Inventory, WithNoRoomAndNoCreditsTheRoomIsReported) {
  Inventory inventory = withFunds(100);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(inventory.buy(1).reason(), "");
  EXPECT_EQ(inventory.funds(), 0);
  EXPECT_NE(inventory.buy(1).reason().find("carry"), std::string::npos);
}

TEST(Inventory, EachPowerupRunsForItsSeconds) {
  constexpr Millis seconds[] = {15, 5, 5, 5, 1};
  for (int item = 0; item < 5; ++item) {
    Inventory inventory = withFunds(60);
    ASSERT_EQ(inventory.buy(item).reason(), "");
    ASSERT_EQ(inventory.buy(item).reason(), "");
    EXPECT_TRUE(inventory.start(item, start));
    EXPECT_EQ(inventory.stock(item), 1) << item;
    EXPECT_TRUE(inventory.isRunning(item, start)) << item;
    const Millis end = start + seconds[item] * 1'000;
    EXPECT_TRUE(inventory.isRunning(item, end - 1)) << item;
    EXPECT_FALSE(inventory.start(item, end - 1)) << item;
    EXPECT_EQ(inventory.stock(item), 1) << item;
    EXPECT_FALSE(inventory.isRunning(item, end)) << item;
    EXPECT_TRUE(inventory.start(item, end)) << item;
    EXPECT_EQ(inventory.stock(item), 0) << item;
    EXPECT_TRUE(inventory.isRunning(item, end + seconds[item] * 1'000 - 1)) << item;
  }
}

TEST(Inventory, ThePulseIsOverAtOnce) {
  Inventory inventory = withFunds(140);
  ASSERT_EQ(inventory.buy(5).reason(), "");
  ASSERT_EQ(inventory.buy(5).reason(), "");
  EXPECT_TRUE(inventory.start(5, start));
  EXPECT_FALSE(inventory.isRunning(5, start));
  EXPECT_TRUE(inventory.start(5, start));
  EXPECT_FALSE(inventory.start(5, start)) << "there were two";
}

TEST(Inventory, PowerupsOutOfStockDoNotStart) {
  Inventory inventory;
  for (const int item : {-1, 0, 1, 2, 3, 4, 5, 6}) EXPECT_FALSE(inventory.start(item, start)) << item;
}

TEST(Inventory, PowerupsRunBesideEachOther) {
  Inventory inventory = withFunds(30);
  ASSERT_EQ(inventory.buy(0).reason(), "");
  ASSERT_EQ(inventory.buy(1).reason(), "");
  EXPECT_TRUE(inventory.start(0, start));
  EXPECT_TRUE(inventory.start(1, start + 4'000));
  EXPECT_TRUE(inventory.isRunning(1, start + 8'999));
  EXPECT_FALSE(inventory.isRunning(1, start + 9'000));
  EXPECT_TRUE(inventory.isRunning(0, start + 9'000));
}

TEST(Inventory, ARunningPowerupCanBeEndedEarly) {
  Inventory inventory = withFunds(40);
  ASSERT_EQ(inventory.buy(0).reason(), "");
  EXPECT_FALSE(inventory.end(0, start));
  EXPECT_TRUE(inventory.start(0, start));
  EXPECT_TRUE(inventory.end(0, start + 1));
  EXPECT_FALSE(inventory.isRunning(0, start + 1));
  EXPECT_FALSE(inventory.end(0, start + 1));
  EXPECT_FALSE(inventory.end(-1, start));
  EXPECT_FALSE(inventory.end(6, start));
}

TEST(Inventory, EarnsWholeCreditsAndKeepsTheRest) {
  Inventory inventory;
  EXPECT_EQ(inventory.earned(5, 11'999), 0);
  EXPECT_EQ(inventory.earned(5, 1), 1) << "12 s at five a minute";
  EXPECT_EQ(inventory.earned(5, 600'000), 50);
  EXPECT_EQ(inventory.earned(0, 600'000), 0);
}

TEST(Inventory, NothingIsLostWhereAMinuteDoesNotDivideEvenly) {
  Inventory inventory;
  std::vector<int> times;
  for (int i = 1; i <= 600; ++i) {
    if (inventory.earned(7, 100) == 1) times.push_back(i);
  }
  // A seventh of a minute is 8571.4 ms.
  EXPECT_EQ(times, (std::vector<int>{86, 172, 258, 343, 429, 515, 600}));
}

TEST(Inventory, BookingsAddUpToTheFunds) {
  Inventory inventory;
  EXPECT_EQ(inventory.booked(Entry::start), 10);
  inventory.book(Entry::income, 15);
  inventory.book(Entry::capture, 20);
  inventory.book(Entry::survival, 10);
  ASSERT_EQ(inventory.buy(0).reason(), "");
  ASSERT_EQ(inventory.buy(1).reason(), "");
  ASSERT_EQ(inventory.sell(0).reason(), "");
  EXPECT_EQ(inventory.booked(Entry::income), 15);
  EXPECT_EQ(inventory.booked(Entry::capture), 20);
  EXPECT_EQ(inventory.booked(Entry::survival), 10);
  EXPECT_EQ(inventory.booked(Entry::purchase), -30);
  EXPECT_EQ(inventory.booked(Entry::sale), 10);
  EXPECT_EQ(inventory.funds(), 35);
}

}  // namespace
}  // namespace kelvora::server
