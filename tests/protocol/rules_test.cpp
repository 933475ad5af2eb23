#include "protocol/rules.h"

#include <gtest/gtest.h>

namespace kelvora {
namespace {

TEST(Rules, TheBallIsHalfItsPictureWide) { EXPECT_EQ(rules::ballRadius, 367.5); }

TEST(Rules, AtFullSpeedAPlayerCrossesTheWorldInThreeAndAThirdSeconds) {
  EXPECT_DOUBLE_EQ(rules::worldSize / rules::topSpeed, 10'000.0 / 3);
}

}  // namespace
}  // namespace kelvora
