// Servers that announce themselves to each other's lists, on real loopback sockets.

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <thread>

#include "generated/version.h"
#include "server/lists/announcement.h"
#include "server/lists/publisher.h"
#include "tests/server/net/runningServer.h"
#include "tests/server/net/webAnswer.h"

namespace kelvora::server {
namespace {

std::string listRequest(const std::string& method, const std::string& query, const std::string& headers = {}) {
  return method + " " + std::string(publishPath) + "?" + query + " HTTP/1.1\r\nHost: h\r\nContent-Length: 0\r\n" +
         headers + "\r\n";
}

const std::string query =
    "version=" KELVORA_VERSION "&address=play.example&port=2010&password=0&notes=n&players=3&max=6";

class Publishing : public testing::Test {
 protected:
  static void SetUpTestSuite() { ::setenv("no_proxy", "127.0.0.1", 1); }

  static Options list(const std::string& key = {}) {
    Options options;
    options.webPort = 0;
    options.publicAddress = "list.example";
    options.listKey = key;
    return options;
  }
  static Options publishing(const RunningServer& list, const std::string& key = {}) {
    Options options;
    options.publicAddress = "arena.example";
    options.notes = "of all";
    options.publishUrls = urlOf(list);
    options.publishKey = key;
    return options;
  }
  static std::string urlOf(const RunningServer& list) { return "http://127.0.0.1:" + std::to_string(list.webPort()); }
  static std::string listOf(const RunningServer& server) {
    return ask(server.webPort(),
               "GET /games/kelvora/gethosts.php?version=" KELVORA_VERSION "&password=1&full=1&empty=1 HTTP/1.0\r\n\r\n")
        .body;
  }
  static std::string own(const RunningServer& list) {
    return "[list.example|" + std::to_string(list.port()) + "|0||0|6]";
  }
  /// Waits up to a minute for a line of the log.
  static bool logs(const RunningServer& server, const std::string& start) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (std::chrono::steady_clock::now() < end) {
      for (const std::string& line : server.log()) {
        if (line.starts_with(start)) return true;
      }
      std::this_thread::yield();
    }
    return false;
  }
};

TEST_F(Publishing, ServerIsListedUntilItStops) {
  const RunningServer list(this->list());
  {
    const RunningServer arena(publishing(list));
    EXPECT_TRUE(logs(arena, "announced to " + urlOf(list)));
    EXPECT_EQ(listOf(list), own(list) + "[arena.example|" + std::to_string(arena.port()) + "|0|of all|0|6]-END-\n");
  }
  EXPECT_EQ(listOf(list), own(list) + "-END-\n") << "it has signed off";
}

TEST_F(Publishing, WithoutAPublicAddressTheListUsesTheSendersAddress) {
  const RunningServer list(this->list());
  Options options = publishing(list);
  options.publicAddress.clear();
  options.password = "secret";
  options.publishUrls += "//";
  const RunningServer arena(options);
  EXPECT_TRUE(logs(arena, "announced to " + urlOf(list)));
  EXPECT_EQ(listOf(list), own(list) + "[127.0.0.1|" + std::to_string(arena.port()) + "|1|of all|0|6]-END-\n");
}

TEST_F(Publishing, ServerIsInSeveralLists) {
  const RunningServer one(this->list());
  const RunningServer other(this->list());
  Options options = publishing(one);
  options.publishUrls += ", " + urlOf(other);
  const auto entryOf = [](const RunningServer& arena) {
    return "[arena.example|" + std::to_string(arena.port()) + "|0|of all|0|6]";
  };
  {
    const RunningServer arena(options);
    EXPECT_TRUE(logs(arena, "announced to " + urlOf(one)));
    EXPECT_TRUE(logs(arena, "announced to " + urlOf(other)));
    EXPECT_EQ(listOf(one), own(one) + entryOf(arena) + "-END-\n");
    EXPECT_EQ(listOf(other), own(other) + entryOf(arena) + "-END-\n");
  }
  EXPECT_EQ(listOf(one), own(one) + "-END-\n");
  EXPECT_EQ(listOf(other), own(other) + "-END-\n");
}

TEST_F(Publishing, ListHasAsManyEntriesAsItMay) {
  Options options = this->list();
  options.listSize = 1;
  const RunningServer list(options);
  EXPECT_EQ(ask(list.webPort(), listRequest("POST", query), 10).code(), 200);
  const std::string another = "version=" KELVORA_VERSION "&address=b&port=2010&password=0&notes=n&players=3&max=6";
  EXPECT_EQ(ask(list.webPort(), listRequest("POST", another), 11).code(), 503);
}

TEST_F(Publishing, MachinesWithoutLimitsAnnounceAnyNumber) {
  Options options = this->list();
  options.unlimitedFor = "127.0.0.10/31";
  const RunningServer list(options);
  const auto announce = [&](int number, std::uint32_t host) {
    const std::string entry = "version=" KELVORA_VERSION "&address=a" + std::to_string(number) +
                              "&port=2010&password=0&notes=n&players=3&max=6";
    return ask(list.webPort(), listRequest("POST", entry), host).code();
  };
  for (int i = 0; i < 80; ++i) EXPECT_EQ(announce(i, i % 2 == 0 ? 10 : 11), 200) << i;
  int others = 0;
  for (int i = 100; i < 180; ++i) others += announce(i, 12) == 200 ? 1 : 0;
  EXPECT_EQ(others, 32);
}

TEST_F(Publishing, ManyArenasShareOneList) {
  const RunningServer list(this->list());
  std::vector<std::unique_ptr<RunningServer>> arenas;
  for (int i = 0; i < 8; ++i) arenas.push_back(std::make_unique<RunningServer>(publishing(list)));
  for (const auto& arena : arenas) EXPECT_TRUE(logs(*arena, "announced to "));
  const std::string all = listOf(list);
  for (const auto& arena : arenas) {
    EXPECT_NE(all.find("[arena.example|" + std::to_string(arena->port()) + "|"), std::string::npos) << all;
  }
}

TEST_F(Publishing, ListWithAKeyRequiresIt) {
  const RunningServer list(this->list("open sesame"));
  const RunningServer without(publishing(list));
  const RunningServer wrong(publishing(list, "open sesamE"));
  const RunningServer right(publishing(list, "open sesame"));
  EXPECT_TRUE(logs(without, "cannot announce to " + urlOf(list) + ": status 403, This list needs a key."));
  EXPECT_TRUE(logs(wrong, "cannot announce to " + urlOf(list) + ": status 403"));
  EXPECT_TRUE(logs(right, "announced to "));
  EXPECT_EQ(listOf(list), own(list) + "[arena.example|" + std::to_string(right.port()) + "|0|of all|0|6]-END-\n");
  EXPECT_EQ(ask(list.webPort(), listRequest("POST", query, "Authorization: Bearer open sesame\r\n")).code(), 200);
  for (const char* header : {"", "Authorization: open sesame\r\n", "Authorization: Bearer \r\n",
                             "Authorization: Bearer open sesame2\r\n", "Authorization: Basic b3Blbg==\r\n"}) {
    EXPECT_EQ(ask(list.webPort(), listRequest("DELETE", query, header)).code(), 403) << header;
  }
}

TEST_F(Publishing, MissingListIsReportedAndTheGameContinues) {
  Options options;
  {
    const RunningServer list(this->list());
    options = publishing(list);
  }
  const RunningServer arena(options);
  EXPECT_TRUE(logs(arena, "cannot announce to http://127.0.0.1:"));
  Client ann(arena.port());
  ann.login("Ann");
  EXPECT_NE(ann.readUntil(wire::msgLoginAccepted), "nothing");
}

TEST_F(Publishing, SilentListDelaysNobody) {
  asio::io_context context;
  asio::ip::tcp::acceptor silent(context, {asio::ip::address_v4::loopback(), 0});
  Options options;
  options.publishUrls = "http://127.0.0.1:" + std::to_string(silent.local_endpoint().port());
  const RunningServer arena(options);
  const auto request = silent.accept();  // so that the announcement is in progress
  Client ann(arena.port());
  ann.login("Ann");
  EXPECT_NE(ann.readUntil(wire::msgLoginAccepted), "nothing");
}

TEST_F(Publishing, OnlyItsPublisherChangesAnEntry) {
  const RunningServer list(this->list());
  EXPECT_EQ(ask(list.webPort(), listRequest("POST", query), 10).code(), 200);
  EXPECT_EQ(ask(list.webPort(), listRequest("POST", query), 11).code(), 409);
  EXPECT_EQ(ask(list.webPort(), listRequest("DELETE", query), 11).code(), 409);
  EXPECT_EQ(listOf(list), own(list) + "[play.example|2010|0|n|3|6]-END-\n");
  EXPECT_EQ(ask(list.webPort(), listRequest("DELETE", query), 10).code(), 200);
  EXPECT_EQ(listOf(list), own(list) + "-END-\n");
}

TEST_F(Publishing, HostileAnnouncementsAreRefused) {
  const RunningServer list(this->list());
  const std::string head =
      "version=" KELVORA_VERSION "&address=play.example&port=2010&password=0&players=3&max=6&notes=";
  for (const std::string& evil :
       {std::string(), std::string("version=" KELVORA_VERSION), head + "a%7Cb", head + "%5Bx%5D", head + "-END-",
        head + "%0A", head + "%00", head + std::string(201, 'n'), std::string(3'000, 'x')}) {
    EXPECT_EQ(ask(list.webPort(), listRequest("POST", evil)).code(), 400) << evil;
  }
  for (const char* method : {"GET", "HEAD", "PUT", "BREW"}) {
    EXPECT_EQ(ask(list.webPort(), listRequest(method, query)).code(), 405) << method;
  }
  EXPECT_EQ(listOf(list), own(list) + "-END-\n");
}

}  // namespace
}  // namespace kelvora::server
