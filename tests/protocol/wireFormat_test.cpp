#include "protocol/wireFormat.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

#include "generated/version.h"

namespace kelvora {
namespace {

using Texts = std::vector<std::string_view>;

TEST(WireFormat, SpawnRequestIsThreeBytes) { EXPECT_EQ(wire::buildFrame(wire::msgSpawnRequest, {""}), "\x80\x98\x81"); }

TEST(WireFormat, LoginHasItsFieldsBetweenSeparators) {
  EXPECT_EQ(wire::buildFrame(wire::msgLogin, {"Ann", "", "2", KELVORA_VERSION}),
            "\x80\x87"
            "Ann\x82\x82"
            "2\x82" KELVORA_VERSION "\x81");
}

TEST(WireFormat, Q060NoDelimiterIsEscaped) {
  EXPECT_EQ(wire::buildFrame(wire::msgLogin, {"A\x82"
                                              "B\x81",
                                              "p"}),
            "\x80\x87"
            "A\x82"
            "B\x81\x82"
            "p\x81");
}

TEST(WireFormat, SplitsAtEverySeparator) {
  EXPECT_EQ(wire::splitFields("a\x82"
                              "b\x82"
                              "c"),
            (Texts{"a", "b", "c"}));
  EXPECT_EQ(wire::splitFields("\x82\x82"), (Texts{"", "", ""}));
  EXPECT_EQ(wire::splitFields("whole"), (Texts{"whole"}));
  EXPECT_EQ(wire::splitFields(""), (Texts{""}));
}

struct IdRow {
  wire::MessageId id;
  int value;
};
// clang-format off
constexpr IdRow ids[] = {
    {wire::msgPositionReport, 131}, {wire::msgPing, 132}, {wire::msgPingReply, 133}, {wire::msgPosition, 134},
    {wire::msgLogin, 135}, {wire::msgLoginDenied, 136}, {wire::msgLoginAccepted, 137}, {wire::msgPlayerJoined, 138},
    {wire::msgPlayerLeft, 140}, {wire::msgTailCapture, 141}, {wire::msgRoundOver, 142}, {wire::msgChat, 144},
    {wire::msgLatencyReport, 145}, {wire::msgVelocityReport, 146}, {wire::msgVelocity, 147}, {wire::msgFunds, 148},
    {wire::msgBuyRequest, 149}, {wire::msgBuyDenied, 150}, {wire::msgBuyAccepted, 151}, {wire::msgSpawnRequest, 152},
    {wire::msgSpawnDenied, 153}, {wire::msgRespawn, 154}, {wire::msgActivateRequest, 155}, {wire::msgPowerupOn, 156},
    {wire::msgAliveState, 157}, {wire::msgSellRequest, 158}, {wire::msgSellDenied, 159}, {wire::msgSellAccepted, 160},
    {wire::msgPowerupOff, 161}, {wire::msgServerText, 162}, {wire::msgParticleAdd, 164}, {wire::msgParticleMove, 165},
    {wire::msgParticleRemove, 168},
};
// clang-format on

TEST(WireFormat, EveryMessageHasItsId) {
  for (const IdRow& row : ids) {
    EXPECT_EQ(row.id, row.value);
    EXPECT_EQ(static_cast<unsigned char>(wire::buildFrame(row.id, {""})[1]), row.value);
  }
}

}  // namespace
}  // namespace kelvora
