#include "server/agones/place.h"

#include <gtest/gtest.h>

namespace kelvora::server {
namespace {

TEST(Place, IsInTheServersStatus) {
  const auto place = readPlace(R"({"object_meta": {"name": "kelvora-x7k", "annotations": {"a.b/c": "[{]"}},
    "spec": {"health": {"disabled": false}},
    "status": {"state": "Ready", "address": "192.0.2.7",
               "ports": [{"name": "game", "port": 7123}, {"name": "web", "port": 7124}]}})");
  EXPECT_EQ(place, (Place{"192.0.2.7", 7123}));
}

TEST(Place, MayNotBeKnownYet) {
  for (const char* text :
       {"", "{}", "[]", "null", "{", "{\"status\": {}}", "{\"status\": \"Ready\"}",
        R"({"status": {"address": "192.0.2.7"}})", R"({"status": {"address": "192.0.2.7", "ports": []}})",
        R"({"status": {"address": "192.0.2.7", "ports": null}})",
        R"({"status": {"address": "192.0.2.7", "ports": [{}]}})",
        R"({"status": {"address": "", "ports": [{"port": 7123}]}})",
        R"({"status": {"address": "192.0.2.7", "ports": [{"port": 0}]}})",
        R"({"status": {"address": "192.0.2.7", "ports": [{"port": 65536}]}})",
        R"({"status": {"address": "192.0.2.7", "ports": [{"port": "x"}]}})"}) {
    EXPECT_EQ(readPlace(text), std::nullopt) << text;
  }
}

TEST(Place, DeeplyNestedDescriptionsAreRefused) {
  EXPECT_EQ(readPlace(std::string(60'000, '[')), std::nullopt);
  EXPECT_EQ(readPlace(R"({"a": )" + std::string(40, '[') + std::string(40, ']') +
                      R"(, "status": {"address": "192.0.2.7", "ports": [{"port": 7123}]}})"),
            std::nullopt);
}

}  // namespace
}  // namespace kelvora::server
