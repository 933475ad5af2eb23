#include "server/http/metricsText.h"

#include <gtest/gtest.h>

#include <string>

#include "server/http/histogram.h"

namespace kelvora::server {
namespace {

using std::chrono::microseconds;
using std::chrono::nanoseconds;

TEST(MetricsText, IsInTheFormatOfPrometheus) {
  MetricsText text;
  text.addGauge("kelvora_players", "People in the arena.", 2);
  text.begin("kelvora_messages_total", "counter", "Messages.");
  text.add(18'446'744'073'709'551'615U, MetricsText::label("a", "b") + "," + MetricsText::label("c", "d"));
  text.add(0.25);
  const HttpAnswer answer = text.answer();
  EXPECT_EQ(answer.status, 200U);
  EXPECT_EQ(answer.type, "text/plain; version=0.0.4; charset=utf-8");
  EXPECT_EQ(answer.body,
            "# HELP kelvora_players People in the arena.\n"
            "# TYPE kelvora_players gauge\n"
            "kelvora_players 2\n"
            "# HELP kelvora_messages_total Messages.\n"
            "# TYPE kelvora_messages_total counter\n"
            "kelvora_messages_total{a=\"b\",c=\"d\"} 18446744073709551615\n"
            "kelvora_messages_total 0.25\n");
}

TEST(MetricsText, LabelsAreQuotedAndPlain) {
  EXPECT_EQ(MetricsText::label("reason", "a\\b\"c"), "reason=\"a\\\\b\\\"c\"");
  EXPECT_EQ(MetricsText::label("reason", "a\nb\x7F\xE4~ "), "reason=\"a?b??~ \"");
}

TEST(MetricsText, BucketsOfAHistogramAddUp) {
  Histogram histogram;
  for (const int time : {0, 5, 6, 40'000, 40'001, 2'000'000}) histogram.add(microseconds(time));
  MetricsText text;
  text.addHistogram("kelvora_tick_seconds", "Ticks.", histogram);
  const std::string body = text.answer().body;
  for (const char* line :
       {"# TYPE kelvora_tick_seconds histogram\n", "\nkelvora_tick_seconds_bucket{le=\"5e-06\"} 2\n",
        "\nkelvora_tick_seconds_bucket{le=\"1e-05\"} 3\n", "\nkelvora_tick_seconds_bucket{le=\"0.02\"} 3\n",
        "\nkelvora_tick_seconds_bucket{le=\"0.04\"} 4\n", "\nkelvora_tick_seconds_bucket{le=\"0.08\"} 5\n",
        "\nkelvora_tick_seconds_bucket{le=\"1\"} 5\n", "\nkelvora_tick_seconds_bucket{le=\"+Inf\"} 6\n",
        "\nkelvora_tick_seconds_sum 2.080012\n", "\nkelvora_tick_seconds_count 6\n"}) {
    EXPECT_NE(body.find(line), std::string::npos) << line << "in\n" << body;
  }
}

TEST(Histogram, EveryDurationIsInOneBucket) {
  Histogram histogram;
  for (const auto bound : Histogram::bounds) {
    histogram.add(bound);
    histogram.add(bound + nanoseconds(1));
  }
  const auto& counts = histogram.counts();
  EXPECT_EQ(counts.front(), 1U);
  for (std::size_t i = 1; i < Histogram::bounds.size(); ++i) EXPECT_EQ(counts[i], 2U) << i;
  EXPECT_EQ(counts.back(), 1U);
}

}  // namespace
}  // namespace kelvora::server
