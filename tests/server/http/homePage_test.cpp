#include "server/http/homePage.h"

#include <gtest/gtest.h>

namespace kelvora::server {
namespace {

TEST(HomePage, HasATableOfRecordsIfThereAreAny) {
  HomePage page;
  EXPECT_EQ(homePageAnswer(page).body.find("<table>"), std::string::npos);
  page.records = {{.title = "Best players", .rows = {{"<J\xFCrgen>", 7, 2, 5, 61}}}, {.title = "Lately", .rows = {}}};
  const std::string body = homePageAnswer(page).body;
  EXPECT_NE(body.find("<h2>Best players</h2>"), std::string::npos);
  EXPECT_NE(body.find("<td>&lt;J\u00FCrgen></td><td>7</td><td>2</td><td>5</td><td>61</td>"), std::string::npos);
  EXPECT_EQ(body.find("Lately"), std::string::npos) << "an empty table";
}

TEST(HomePage, LinksToThePageForBrowsersIfThereIsOne) {
  const std::string play = "<a href=\"/\">Play</a>";
  const std::string watch = "<a href=\"/watch\">watch</a>";
  HomePage page;
  page.spectatorPort = 2011;
  EXPECT_EQ(homePageAnswer(page).body.find(play), std::string::npos);
  EXPECT_EQ(homePageAnswer(page).body.find(watch), std::string::npos);
  page.hasSite = true;
  EXPECT_NE(homePageAnswer(page).body.find(play + " or " + watch + " in the browser."), std::string::npos);
  page.spectatorPort = 0;
  EXPECT_NE(homePageAnswer(page).body.find(play + " in the browser."), std::string::npos);
}

}  // namespace
}  // namespace kelvora::server
