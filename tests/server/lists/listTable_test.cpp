#include "server/lists/listTable.h"

#include <gtest/gtest.h>

namespace kelvora::server {
namespace {

TEST(ListTable, ARowLinksToTheGame) {
  HostEntry host{.address = "games.example", .port = 2010, .notes = "<b>", .players = 2, .maxPlayers = 6};
  EXPECT_EQ(listTableRow(host),
            "<tr><td>&lt;b><td>2 of 6<td>games.example<td>2010<td><a href=\"http://games.example:2010/\" "
            "aria-label=\"Play at games.example:2010\">Play</a></tr>\n");
  host.address = "2001:db8::7";
  EXPECT_NE(listTableRow(host).find("\"http://[2001:db8::7]:2010/\""), std::string::npos);
  host.address.clear();
  EXPECT_NE(listTableRow(host).find("<a href=\"/\" aria-label=\"Play at this server\">Play</a>"), std::string::npos);
}

TEST(ListTable, OnlyGamesThatTakeSpectatorsCanBeWatched) {
  HostEntry host{.address = "games.example", .port = 2010, .notes = "", .maxPlayers = 6};
  EXPECT_EQ(listTableRow(host).find("watch"), std::string::npos);
  host.mayWatch = true;
  EXPECT_NE(listTableRow(host).find(
                "<a href=\"http://games.example:2010/watch\" aria-label=\"Watch at games.example:2010\">Watch</a>"),
            std::string::npos);
  host.address.clear();
  EXPECT_NE(listTableRow(host).find("<a href=\"/watch\" aria-label=\"Watch at this server\">Watch</a>"),
            std::string::npos);
}

}  // namespace
}  // namespace kelvora::server
