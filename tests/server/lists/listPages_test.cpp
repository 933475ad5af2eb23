#include "server/lists/listPages.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "generated/version.h"

namespace kelvora::server {
namespace {

constexpr auto listOfThis = "[192.0.2.7|2010|0|friendly game|3|6]-END-\n";

class ListPagesTest : public testing::Test {
 protected:
  ListPages pages{KELVORA_VERSION, ""};

  ListPagesTest() { publish(false, 3); }
  void publish(bool password, std::size_t players) {
    pages.setOwnEntry(HostEntry{.address = "192.0.2.7",
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

TEST_F(ListPagesTest, HasItsFourPaths) {
  for (const char* path :
       {"/games", "/games/kelvora/ver.txt", "/games/kelvora/gethosts.php", "/games/kelvora/publish"}) {
    EXPECT_TRUE(ListPages::has(path)) << path;
  }
  for (const char* path : {"/", "/games/", "/games/kelvora/", "/games/kelvora/ver.txt/", "/GAMES/KELVORA/VER.TXT"}) {
    EXPECT_FALSE(ListPages::has(path)) << path;
  }
}

TEST_F(ListPagesTest, MayLackTheServerItself) {
  pages.setOwnEntry(std::nullopt);
  EXPECT_EQ(list("version=" KELVORA_VERSION), "-END-\n");
  EXPECT_EQ(text(ask("GET", "/games")).find(" of 6"), std::string::npos);
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

TEST_F(ListPagesTest, OtherMethodsAreRefusedWithTheAllowedOnes) {
  for (const char* method : {"POST", "PUT", "DELETE", "OPTIONS", "BREW"}) {
    const HttpAnswer answer = ask(method, "/games/kelvora/ver.txt");
    EXPECT_EQ(answer.status, 405U) << method;
    EXPECT_EQ(answer.headers.back(), "Allow: GET, HEAD") << method;
  }
  EXPECT_EQ(ask("GET", "/games/kelvora/publish").headers.back(), "Allow: POST, DELETE");
}

TEST_F(ListPagesTest, AnswersAreNotCachedAndEndTheConnection) {
  const HttpAnswer answer = ask("GET", "/games/kelvora/gethosts.php?version=" KELVORA_VERSION);
  EXPECT_EQ(answer.headers.front(), "Cache-Control: no-store");
  EXPECT_EQ(answer.type, "text/plain");
  // The update check waits for the connection's end.
  EXPECT_FALSE(answer.mayKeepAlive);
}

/// The page's rows, without tags but with the links.
std::vector<std::string> rows(std::string page) {
  page = std::regex_replace(page, std::regex("<a href=\"([^\"]*)\"[^>]*>Play</a>"), "$1");
  std::vector<std::string> result;
  static const std::regex row("<tr><td>(.*)</tr>");
  for (std::sregex_iterator match(page.begin(), page.end(), row), end; match != end; ++match) {
    result.push_back(std::regex_replace((*match)[1].str(), std::regex("<td>"), "|"));
  }
  return result;
}

TEST_F(ListPagesTest, BrowsersGetATableWithALinkToPlayEachGame) {
  pages.setOwnEntry(
      HostEntry{.address = "192.0.2.7", .port = 2010, .notes = "f\xFCr alle", .players = 1, .maxPlayers = 6});
  const auto publish = [&](const std::string& query) {
    HttpRequest request{.method = "POST", .target = "/games/kelvora/publish?" + query};
    EXPECT_EQ(pages.answer(request, {.address = "198.51.100.1", .network = "n"}, 0).status, 200U) << query;
  };
  publish("version=" KELVORA_VERSION "&address=b.example&port=2011&password=1&notes=secret&players=0&max=6");
  publish("version=1.2.0&address=2001:db8::7&port=2012&password=0&notes=old&players=5&max=6");
  const HttpAnswer answer = ask("GET", "/games");
  EXPECT_EQ(answer.type, "text/html; charset=utf-8");
  EXPECT_EQ(answer.headers.front(), "Cache-Control: no-store");
  const std::string page = text(answer);
  EXPECT_EQ(rows(page), (std::vector<std::string>{"f\u00FCr alle|1 of 6|192.0.2.7|2010|http://192.0.2.7:2010/",
                                                  "old|5 of 6|2001:db8::7|2012|http://[2001:db8::7]:2012/",
                                                  "secret (password)|0 of 6|b.example|2011|http://b.example:2011/"}))
      << "this server's first, then those with most players, of all versions";
  EXPECT_TRUE(page.starts_with("<!doctype html>"));
  EXPECT_TRUE(page.ends_with("</html>\n"));
  EXPECT_EQ(ask("POST", "/games").status, 405U);
}

TEST_F(ListPagesTest, AServerWithoutAnAddressIsPlayedWhereThePageIs) {
  ListPages wildcard(KELVORA_VERSION, "", "0.0.0.0");
  wildcard.setOwnEntry(HostEntry{.address = "", .port = 2010, .notes = "", .players = 0, .maxPlayers = 6});
  const auto ask = [&](const std::string& target) {
    return text(wildcard.answer({.method = "GET", .target = target}, {.address = "198.51.100.1", .network = "n"}, 0));
  };
  EXPECT_EQ(rows(ask("/games")), std::vector<std::string>{"(no description)|0 of 6|this server|2010|/"});
  EXPECT_EQ(ask("/games/kelvora/gethosts.php?version=" KELVORA_VERSION), "[0.0.0.0|2010|0||0|6]-END-\n");
}

TEST_F(ListPagesTest, NothingInAnEntryBecomesMarkup) {
  const std::string evil = "</td><script>alert(1)</script>\"' onclick=x &lt; \x01\x7F";
  pages.setOwnEntry(HostEntry{.address = evil, .port = 2010, .notes = evil, .players = 3, .maxPlayers = 6});
  HttpRequest request{.method = "POST",
                      .target =
                          "/games/kelvora/publish?version=" KELVORA_VERSION
                          "&address=a&port=1&password=0&players=0&max=6&notes=%3Cscript%3E%22%26amp;%3C/table%3E"};
  EXPECT_EQ(pages.answer(request, {.address = "198.51.100.1", .network = "n"}, 0).status, 200U);
  const std::string page = text(ask("GET", "/games"));
  EXPECT_EQ(page.find("script>"), page.find("&lt;script>") + 4) << page;
  EXPECT_EQ(page.find("<script"), std::string::npos);
  EXPECT_NE(page.find("&lt;script>&quot;&amp;amp;&lt;/table>"), std::string::npos);
  // Text after the quotation mark stays inside the attribute.
  EXPECT_NE(page.find("href=\"http://&lt;/td>&lt;script>alert(1)&lt;/script>&quot;' onclick=x &amp;lt; :2010/\""),
            std::string::npos)
      << page;
  EXPECT_EQ(page.find_first_of("\x01\x7F"), std::string::npos);
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

TEST_F(ListPagesTest, OneAddressHasAtMostThirtyTwoEntries) {
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
