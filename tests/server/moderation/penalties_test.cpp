#include "server/moderation/penalties.h"

#include <gtest/gtest.h>

#include <random>

namespace kelvora::server {
namespace {

constexpr Seconds now = 1'000'000'000;  // 2001-09-09T01:46:40Z

std::string textOfBans(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    text += "ban 10.0." + std::to_string(i / 256) + "." + std::to_string(i % 256) + " forever\n";
  }
  return text;
}

TEST(Penalties, EndInTime) {
  Penalties penalties;
  EXPECT_FALSE(penalties.add({.network = "192.0.2.1", .end = now + 10}, now).isRefused());
  ASSERT_NE(penalties.find(PenaltyKind::ban, "192.0.2.1", now + 9), nullptr);
  EXPECT_EQ(penalties.find(PenaltyKind::ban, "192.0.2.1", now + 10), nullptr);
  EXPECT_EQ(penalties.find(PenaltyKind::mute, "192.0.2.1", now), nullptr);
  EXPECT_EQ(penalties.find(PenaltyKind::ban, "192.0.2.10", now), nullptr);
}

TEST(Penalties, AreReadAsWritten) {
  Penalties penalties;
  const std::string text =
      "# a comment\n"
      "ban 192.0.2.1 2030-01-02T03:04:05Z \"Ann\" too loud\n"
      "mute 2001:db8::/64 forever\n"
      "ban 192.0.2.2 forever \"Jürgen\"\n"
      "ban 192.0.2.3 forever no name given\n";
  EXPECT_TRUE(penalties.read(text, now).empty());
  ASSERT_EQ(penalties.all().size(), 4U);
  const Penalty* ban = penalties.find(PenaltyKind::ban, "192.0.2.1", now);
  ASSERT_NE(ban, nullptr);
  EXPECT_EQ(ban->end, 1'893'553'445);
  EXPECT_EQ(ban->name, "Ann");
  EXPECT_EQ(ban->reason, "too loud");
  EXPECT_EQ(penalties.all()[2].name, "J\xFCrgen");
  EXPECT_EQ(penalties.find(PenaltyKind::mute, "2001:db8::/64", now)->end, never);
  EXPECT_EQ(penalties.text(), text);
}

TEST(Penalties, HandWrittenLinesMayDiffer) {
  Penalties penalties;
  EXPECT_TRUE(penalties.read("\tban\t2001:db8::7 \t forever\t\"x\" why\r\n\r\n  \n  # note", now).empty());
  EXPECT_EQ(penalties.text(), "# note\nban 2001:db8::/64 forever \"x\" why\n");
}

TEST(Penalties, AByteOrderMarkIsNotPartOfTheFirstLine) {
  Penalties penalties;
  EXPECT_TRUE(penalties
                  .read("\xEF\xBB\xBF"
                        "ban 192.0.2.1 forever\r\n",
                        now)
                  .empty());
  EXPECT_EQ(penalties.text(), "ban 192.0.2.1 forever\n");
}

TEST(Penalties, InvalidLinesAreReportedAndKept) {
  Penalties penalties;
  const auto complaints = penalties.read(
      "ban 192.0.2.1 forever\nbann 192.0.2.2 forever\nban example.org forever\nban 192.0.2.3 tomorrow\n"
      "ban 192.0.2.4 forever \"Ann\nban 192.0.2.5 forever \xFF\nban\n",
      now);
  EXPECT_EQ(
      complaints,
      (std::vector<std::string>{
          "2: expected \"ban\" or \"mute\"", "3: expected an IP address, or an IPv6 one with /64",
          "4: expected a time such as 2026-11-22T14:00:00Z, or \"forever\"", "5: the name has no second quotation mark",
          "6: expected UTF-8 with letters of code page 1252", "7: expected an IP address, or an IPv6 one with /64"}));
  EXPECT_EQ(penalties.all().size(), 1U);
  EXPECT_EQ(penalties.text(),
            "bann 192.0.2.2 forever\nban example.org forever\nban 192.0.2.3 tomorrow\nban 192.0.2.4 forever \"Ann\n"
            "ban 192.0.2.5 forever \xFF\nban\nban 192.0.2.1 forever\n");
}

TEST(Penalties, OfOneNetworkAndKindReplaceEachOther) {
  Penalties penalties;
  EXPECT_TRUE(penalties.read("ban 192.0.2.1 forever\nban 192.0.2.1 2030-01-01T00:00:00Z last\n", now).empty());
  ASSERT_EQ(penalties.all().size(), 1U);
  EXPECT_EQ(penalties.all()[0].reason, "last");
  EXPECT_FALSE(penalties.add({.kind = PenaltyKind::mute, .network = "192.0.2.1"}, now).isRefused());
  EXPECT_EQ(penalties.all().size(), 2U);
}

TEST(Penalties, AreBoundedInNumber) {
  Penalties penalties;
  const auto complaints = penalties.read(textOfBans(1'030), now);
  EXPECT_EQ(penalties.all().size(), Penalties::maxCount);
  ASSERT_EQ(complaints.size(), 21U);
  EXPECT_EQ(complaints[0], "1001: there are 1000 bans and mutes already");
  EXPECT_EQ(complaints[20], "and 10 more invalid lines");
  EXPECT_TRUE(penalties.add({.network = "192.0.2.1"}, now).isRefused());
  EXPECT_FALSE(penalties.add({.network = "10.0.0.1", .reason = "replaced"}, now).isRefused());
  EXPECT_EQ(penalties.all().size(), Penalties::maxCount);
}

TEST(Penalties, ThatAreOverMakeRoom) {
  Penalties penalties;
  EXPECT_TRUE(penalties.read("ban 192.0.2.1 2001-01-01T00:00:00Z\n" + textOfBans(999), now).empty());
  EXPECT_EQ(penalties.all().size(), 999U);
  EXPECT_FALSE(penalties.add({.network = "192.0.2.2", .end = now + 5}, now).isRefused());
  EXPECT_TRUE(penalties.add({.network = "192.0.2.3"}, now + 4).isRefused());
  EXPECT_FALSE(penalties.add({.network = "192.0.2.3"}, now + 5).isRefused());
}

TEST(Penalties, KeepABoundedAmountOfRemarks) {
  Penalties penalties;
  const std::string comment = "#" + std::string(999, 'x') + "\n";
  std::string text;
  for (int i = 0; i < 70; ++i) text += comment;
  const auto complaints = penalties.read(text, now);
  ASSERT_FALSE(complaints.empty());
  EXPECT_EQ(complaints[0], "66: no room for this line, which will be lost");
  EXPECT_LE(penalties.text().size(), Penalties::maxRemarks);
}

TEST(Penalties, TextsFitIntoALineAndAMessage) {
  Penalties penalties;
  EXPECT_FALSE(
      penalties.add({.network = "192.0.2.1", .name = "A\"n\nn\x80", .reason = "\"a\n\x81" + std::string(200, 'b')}, now)
          .isRefused());
  EXPECT_EQ(penalties.all()[0].name, "A'nn");
  EXPECT_EQ(penalties.all()[0].reason, "\"a" + std::string(98, 'b'));
  Penalties again;
  EXPECT_TRUE(again.read(penalties.text(), now).empty());
  EXPECT_EQ(again.all().at(0).reason, penalties.all()[0].reason);
  EXPECT_TRUE(again.read("ban 192.0.2.1 forever \"\" 5 \u20AC \u201A", now).empty());
  EXPECT_EQ(again.all().at(0).reason, "5");
}

TEST(Penalties, AreLiftedByNetworkAddressOrName) {
  Penalties penalties;
  const std::string text = "ban 192.0.2.1 forever \"Ann\"\nmute 192.0.2.1 forever \"Ann\"\nban 2001:db8::/64 forever\n";
  EXPECT_TRUE(penalties.read(text, now).empty());
  EXPECT_TRUE(penalties.remove(PenaltyKind::ban, "Bob").empty());
  EXPECT_TRUE(penalties.remove(PenaltyKind::ban, "").empty());
  EXPECT_EQ(penalties.remove(PenaltyKind::ban, "ANN").size(), 1U);
  EXPECT_EQ(penalties.remove(PenaltyKind::ban, "2001:db8::9").size(), 1U);
  EXPECT_EQ(penalties.all().size(), 1U);
  EXPECT_EQ(penalties.remove(PenaltyKind::mute, "192.0.2.1").size(), 1U);
}

TEST(Penalties, SurviveAFileThatEndsAnywhere) {
  const std::string text =
      "# note\nban 192.0.2.1 2030-01-02T03:04:05Z \"Ann\" too loud\nmute 2001:db8::/64 forever \"Bob\"\n";
  for (std::size_t size = 0; size <= text.size(); ++size) {
    Penalties penalties;
    const auto complaints = penalties.read(text.substr(0, size), now);
    EXPECT_LE(complaints.size(), 1U) << size;  // only the last line can be incomplete
    EXPECT_EQ(penalties.find(PenaltyKind::ban, "192.0.2.1", now) != nullptr,
              size >= text.find("Z \"") + 1 && !(size > text.find("Z \"") + 2 && size < text.find("Ann\"") + 4))
        << size;
  }
}

TEST(Penalties, SurviveAnyBytes) {
  std::mt19937 random(3);
  const std::string model = "ban 192.0.2.1 2030-01-02T03:04:05Z \"Ann\" too loud\nmute 2001:db8::/64 forever \"Bob\"\n";
  for (int round = 0; round < 2'000; ++round) {
    std::string text = model + model;
    for (int change = 0; change < 6; ++change) text[random() % text.size()] = static_cast<char>(random());
    Penalties penalties;
    penalties.read(text, now);
    const std::string written = penalties.text();
    Penalties again;
    again.read(written, now);
    EXPECT_EQ(again.text(), written);
    ASSERT_EQ(again.all().size(), penalties.all().size());
  }
}

}  // namespace
}  // namespace kelvora::server
