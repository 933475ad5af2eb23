#include "server/lists/listPages.h"

#include <gtest/gtest.h>

#include "generated/version.h"

namespace kelvora::server {
namespace {

constexpr auto listOfThis = "[192.0.2.7|2010|0|friendly game|3|6]-END-\n";

class ListPagesTest : public testing::Test {
 protected:
  ListPages pages{KELVORA_VERSION, ""};

  ListPagesTest() { publish(false, 3); }
  void publish(bool password, std::size_t players) {
    pages.publish({.address = "192.0.2.7",
                   .port = 2010,
                   .passwordRequired = password,
                   .notes = "friendly game",
                   .players = players,
                   .maxPlayers = 6});
  }
  HttpAnswer ask(const std::string& method, const std::string& target) {
    HttpRequest request;
    request.method = method;
    request.target = target;
    return pages.answer(request, {.address = "198.51.100.1", .network = "198.51.100.1"}, 0);
  }
  static std::string text(const HttpAnswer& answer) {
    std::string all = answer.body;
    std::string piece = answer.more ? answer.more(5) : "";
    for (; !piece.empty(); piece = answer.more(5)) all += piece;
    EXPECT_EQ(all.size(), answer.body.size() + answer.moreSize);
    return all;
  }
  std::string list(const std::string& query) { return text(ask("GET", "/games/kelvora/gethosts.php?" + query)); }
};

TEST_F(ListPagesTest, HasItsThreePaths) {
  for (const char* path : {"/games/kelvora/ver.txt", "/games/kelvora/gethosts.php", "/games/kelvora/publish"}) {
    EXPECT_TRUE(ListPages::has(path)) << path;
  }
  for (const char* path : {"/", "/games/kelvora/", "/games/kelvora/ver.txt/", "/GAMES/KELVORA/VER.TXT"}) {
    EXPECT_FALSE(ListPages::has(path)) << path;
  }
}

TEST_F(ListPagesTest, AnswersBothFormsOfATarget) {
  EXPECT_EQ(text(ask("GET", "http://h:81/games/kelvora/gethosts.php?version=" KELVORA_VERSION)), listOfThis);
  EXPECT_EQ(ask("GET", "/games/kelvora/ver.txt").body, "tvqver:" KELVORA_VERSION "\n");
  EXPECT_EQ(ask("HEAD", "/games/kelvora/ver.txt").status, 200U);
}

TEST_F(ListPagesTest, TheQueryFiltersTheList) {
  struct Row {
    bool password;
    std::size_t players;
    const char* query;
    bool shown;
  };
  const Row rows[] = {
      {false, 3, "version=" KELVORA_VERSION "&password=0&full=0&empty=0", true},
      {false, 3, "version=1.2.0&password=1&full=1&empty=1", false},
      {false, 3, "password=1&full=1&empty=1", false},
      {false, 3, "", false},
      {true, 3, "version=" KELVORA_VERSION "&password=0&full=1&empty=1", false},
      {true, 3, "version=" KELVORA_VERSION "&password=1&full=0&empty=0", true},
      {false, 6, "version=" KELVORA_VERSION "&password=1&full=0&empty=1", false},
      {false, 6, "version=" KELVORA_VERSION "&password=0&full=1&empty=0", true},
      {false, 0, "version=" KELVORA_VERSION "&password=1&full=1&empty=0", false},
      {false, 0, "version=" KELVORA_VERSION "&password=0&full=0&empty=1", true},
      {true, 6, "version=" KELVORA_VERSION, true},  // only a 0 hides
  };
  for (const Row& row : rows) {
    publish(row.password, row.players);
    EXPECT_EQ(list(row.query).starts_with('['), row.shown)
        << "password " << row.password << ", players " << row.players << ", " << row.query;
  }
}

TEST_F(ListPagesTest, OtherMethodsAreRefusedWithThoseThatAreAllowed) {
  for (const char* method : {"POST", "PUT", "DELETE", "OPTIONS", "BREW"}) {
    const HttpAnswer answer = ask(method, "/games/kelvora/ver.txt");
    EXPECT_EQ(answer.status, 405U) << method;
    EXPECT_EQ(answer.headers.back(), "Allow: GET, HEAD") << method;
  }
  EXPECT_EQ(ask("GET", "/games/kelvora/publish").headers.back(), "Allow: POST, DELETE");
}

TEST_F(ListPagesTest, NothingMayBeCachedNorKept) {
  const HttpAnswer answer = ask("GET", "/games/kelvora/gethosts.php?version=" KELVORA_VERSION);
  EXPECT_EQ(answer.headers.front(), "Cache-Control: no-store");
  EXPECT_EQ(answer.type, "text/plain");
  // The update check waits for the connection's end.
  EXPECT_FALSE(answer.mayKeepAlive);
}

/// The status of announcing a server at that port.
unsigned int announce(ListPages& pages, int port, const std::string& from, const std::string& authorization = {}) {
  HttpRequest request;
  request.method = "POST";
  request.target =
      "/games/kelvora/publish?version=" KELVORA_VERSION "&address=play.example&port=" + std::to_string(port) +
      "&password=0&notes=n&players=3&max=6";
  request.authorization = authorization;
  return pages.answer(request, {.address = from, .network = from}, 0).status;
}

TEST_F(ListPagesTest, OneAddressHasThirtyTwoEntries) {
  for (int port = 1; port <= 32; ++port) EXPECT_EQ(announce(pages, port, "198.51.100.1"), 200U) << port;
  EXPECT_EQ(announce(pages, 33, "198.51.100.1"), 429U);
  EXPECT_EQ(announce(pages, 33, "198.51.100.2"), 200U);
}

TEST_F(ListPagesTest, TheKeyLiftsTheLimitOfEntries) {
  ListPages locked(KELVORA_VERSION, "k");
  for (int port = 1; port <= 40; ++port) EXPECT_EQ(announce(locked, port, "198.51.100.1", "Bearer k"), 200U) << port;
  for (const char* wrong : {"", "k", "Bearer ", "Bearer kk", "Bearer K", "bearer k"}) {
    EXPECT_EQ(announce(locked, 41, "198.51.100.1", wrong), 403U) << wrong;
  }
}

}  // namespace
}  // namespace kelvora::server
