#include "platform/win32/eventQueue.h"

#include <gtest/gtest.h>

#include <vector>

namespace kelvora {
namespace {

class Target : public InputTarget {
 public:
  void take(const Input& input) override { taken.push_back(input.first); }
  std::vector<int> taken;
};

TEST(EventQueue, InputArrivesInItsOrderAndOnlyWhenServed) {
  Target target;
  target.post({InputKind::KeyPress, 1});
  target.post({InputKind::KeyPress, 2});
  EXPECT_TRUE(target.taken.empty());
  EXPECT_TRUE(serveInput());
  EXPECT_TRUE(serveInput());
  EXPECT_FALSE(serveInput());
  EXPECT_EQ(target.taken, (std::vector<int>{1, 2}));
}

TEST(EventQueue, InputOfADestroyedTargetIsDropped) {
  Target stays;
  {
    Target goes;
    goes.post({InputKind::Click, 1});
    stays.post({InputKind::Click, 2});
  }
  EXPECT_TRUE(serveInput());
  EXPECT_FALSE(serveInput());
  EXPECT_EQ(stays.taken, std::vector<int>{2});
}

TEST(EventQueue, IdsFitAMenuCommandHoweverManyTargetsComeAndGo) {
  const Target first;
  for (int i = 0; i < 70'000; ++i) {
    const Target target;
    ASSERT_GT(target.id(), 0);
    ASSERT_LT(target.id(), 0xF000);
    ASSERT_NE(target.id(), first.id());
  }
}

TEST(EventQueue, HoldsABoundedNumber) {
  Target target;
  for (int i = 0; i < 30'000; ++i) target.post({InputKind::KeyPress, i});
  int served = 0;
  while (serveInput()) ++served;
  EXPECT_EQ(served, 10'000);
  EXPECT_EQ(target.taken.front(), 0);
}

}  // namespace
}  // namespace kelvora
