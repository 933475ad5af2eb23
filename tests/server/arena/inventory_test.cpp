#include "server/arena/inventory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace kelvora::server {
namespace {

constexpr Millis start = 1'000'000;

/// An inventory with this many credits, including the initial 10.
Inventory withFunds(int credits) {
  Inventory inventory;
  inventory.book(Entry::capture, credits - 10);
  EXPECT_EQ(inventory.funds(), credits);
  return inventory;
}

TEST(Inventory, StartsWithTenCreditsAndNothing) {
  const Inventory inventory;
  EXPECT_EQ(inventory.funds(), 10);
  EXPECT_EQ(inventory.totalStock(), 0);
  for (const PowerupSlot item : powerupSlots) EXPECT_FALSE(inventory.isRunning(item, 0)) << item;
}

TEST(Inventory, EachItemCostsItsPriceAndSellsForHalf) {
  constexpr int prices[] = {20, 10, 30, 20, 20, 70};
  constexpr int resale[] = {10, 5, 15, 10, 10, 35};
  for (const PowerupSlot item : powerupSlots) {
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

TEST(Inventory, RefusalsNameTheReason) {
  Inventory inventory;
  EXPECT_EQ(inventory.buy(shieldSlot).reason(), "Shield costs 20 credits. You have 10 credits.");
  EXPECT_EQ(withFunds(1).buy(pulseSlot).reason(), "EMP costs 70 credits. You have 1 credit.");
  EXPECT_EQ(inventory.sell(extendedTailSlot).reason(), "You have nothing to sell of this kind: Extra Long Tail.");
  for (const PowerupSlot item : {PowerupSlot{-1}, PowerupSlot{6}, PowerupSlot{-32'768}, PowerupSlot{32'767}}) {
    EXPECT_EQ(inventory.buy(item).reason(), "The store has no such powerup.") << item;
    EXPECT_EQ(inventory.sell(item).reason(), "The store has no such powerup.") << item;
    EXPECT_EQ(inventory.stock(item), 0) << item;
  }
  EXPECT_EQ(inventory.funds(), 10);
}

TEST(Inventory, HoldsTenOfAllKindsTogether) {
  Inventory inventory = withFunds(300);
  for (int i = 0; i < 7; ++i) EXPECT_EQ(inventory.buy(turboSlot).reason(), "");  // 70
  EXPECT_EQ(inventory.buy(pulseSlot).reason(), "");                              // 70
  EXPECT_EQ(inventory.buy(chargedTailSlot).reason(), "");                        // 30
  EXPECT_EQ(inventory.buy(shieldSlot).reason(), "");                             // 20
  EXPECT_EQ(inventory.funds(), 110);
  EXPECT_EQ(inventory.totalStock(), 10);
  for (const PowerupSlot item : powerupSlots) {
    EXPECT_EQ(inventory.buy(item).reason(), "You cannot carry more than 10 powerups. Use or sell one first.") << item;
  }
  EXPECT_EQ(inventory.funds(), 110);
  EXPECT_EQ(inventory.sell(pulseSlot).reason(), "");        // 35 back
  EXPECT_EQ(inventory.buy(extendedTailSlot).reason(), "");  // 20
  EXPECT_EQ(inventory.funds(), 125);
  EXPECT_TRUE(inventory.start(extendedTailSlot, start));
  EXPECT_EQ(inventory.buy(laserSlot).reason(), "") << "a running one takes no room";
  EXPECT_EQ(inventory.funds(), 105);
}

TEST(Inventory, WithNoRoomAndNoCreditsTheRoomIsReported) {
  Inventory inventory = withFunds(100);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(inventory.buy(turboSlot).reason(), "");
  EXPECT_EQ(inventory.funds(), 0);
  EXPECT_NE(inventory.buy(turboSlot).reason().find("carry"), std::string::npos);
}

TEST(Inventory, EachPowerupRunsForItsSeconds) {
  constexpr Millis seconds[] = {15, 5, 5, 5, 1};
  for (const PowerupSlot item : {shieldSlot, turboSlot, chargedTailSlot, extendedTailSlot, laserSlot}) {
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
  ASSERT_EQ(inventory.buy(pulseSlot).reason(), "");
  ASSERT_EQ(inventory.buy(pulseSlot).reason(), "");
  EXPECT_TRUE(inventory.start(pulseSlot, start));
  EXPECT_FALSE(inventory.isRunning(pulseSlot, start));
  EXPECT_TRUE(inventory.start(pulseSlot, start));
  EXPECT_FALSE(inventory.start(pulseSlot, start)) << "there were two";
}

TEST(Inventory, PowerupsOutOfStockDoNotStart) {
  Inventory inventory;
  for (std::int16_t item = -1; item <= powerupSlotCount; ++item) {
    EXPECT_FALSE(inventory.start(PowerupSlot{item}, start)) << item;
  }
}

TEST(Inventory, PowerupsRunInParallel) {
  Inventory inventory = withFunds(30);
  ASSERT_EQ(inventory.buy(shieldSlot).reason(), "");
  ASSERT_EQ(inventory.buy(turboSlot).reason(), "");
  EXPECT_TRUE(inventory.start(shieldSlot, start));
  EXPECT_TRUE(inventory.start(turboSlot, start + 4'000));
  EXPECT_TRUE(inventory.isRunning(turboSlot, start + 8'999));
  EXPECT_FALSE(inventory.isRunning(turboSlot, start + 9'000));
  EXPECT_TRUE(inventory.isRunning(shieldSlot, start + 9'000));
}

TEST(Inventory, ARunningPowerupCanBeEndedEarly) {
  Inventory inventory = withFunds(40);
  ASSERT_EQ(inventory.buy(shieldSlot).reason(), "");
  EXPECT_FALSE(inventory.end(shieldSlot, start));
  EXPECT_TRUE(inventory.start(shieldSlot, start));
  EXPECT_TRUE(inventory.end(shieldSlot, start + 1));
  EXPECT_FALSE(inventory.isRunning(shieldSlot, start + 1));
  EXPECT_FALSE(inventory.end(shieldSlot, start + 1));
  EXPECT_FALSE(inventory.end(PowerupSlot{-1}, start));
  EXPECT_FALSE(inventory.end(PowerupSlot{6}, start));
}

TEST(Inventory, EarnsWholeCreditsAndKeepsTheFraction) {
  Inventory inventory;
  EXPECT_EQ(inventory.earned(5, 11'999), 0);
  EXPECT_EQ(inventory.earned(5, 1), 1) << "12 s at five per minute";
  EXPECT_EQ(inventory.earned(5, 600'000), 50);
  EXPECT_EQ(inventory.earned(0, 600'000), 0);
}

TEST(Inventory, NothingIsLostWhereAMinuteDoesNotDivideEvenly) {
  Inventory inventory;
  std::vector<int> times;
  for (int i = 1; i <= 600; ++i) {
    if (inventory.earned(7, 100) == 1) times.push_back(i);
  }
  // 1/7 of a minute is 8571.4 ms.
  EXPECT_EQ(times, (std::vector<int>{86, 172, 258, 343, 429, 515, 600}));
}

TEST(Inventory, BookingsAddUpToTheFunds) {
  Inventory inventory;
  EXPECT_EQ(inventory.booked(Entry::start), 10);
  inventory.book(Entry::income, 15);
  inventory.book(Entry::capture, 20);
  inventory.book(Entry::survival, 10);
  ASSERT_EQ(inventory.buy(shieldSlot).reason(), "");
  ASSERT_EQ(inventory.buy(turboSlot).reason(), "");
  ASSERT_EQ(inventory.sell(shieldSlot).reason(), "");
  EXPECT_EQ(inventory.booked(Entry::income), 15);
  EXPECT_EQ(inventory.booked(Entry::capture), 20);
  EXPECT_EQ(inventory.booked(Entry::survival), 10);
  EXPECT_EQ(inventory.booked(Entry::purchase), -30);
  EXPECT_EQ(inventory.booked(Entry::sale), 10);
  EXPECT_EQ(inventory.funds(), 35);
}

}  // namespace
}  // namespace kelvora::server
