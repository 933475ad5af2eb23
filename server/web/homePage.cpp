#include "server/web/homePage.h"

#include <utility>

#include "server/web/html.h"

namespace kelvora::server {

namespace {

std::string listOf(const std::vector<std::string>& names) {
  if (names.empty()) return {};
  std::string list = "<ul>\n";
  for (const std::string& name : names) list += "<li>" + htmlText(name) + "</li>\n";
  return list + "</ul>\n";
}

}  // namespace

HttpAnswer homePageAnswer(const HomePage& page) {
  std::string body = htmlBegin("Kelvora arena");
  if (!page.notes.empty()) body += "<p>" + htmlText(page.notes) + "</p>\n";
  body +=
      "<p>" + std::to_string(page.players.size()) + " of " + std::to_string(page.maxPlayers) + " players are in.</p>\n";
  body += listOf(page.players);
  if (!page.bots.empty()) {
    body += "<p>Bots play until people take their places:</p>\n" + listOf(page.bots);
  }
  const std::string address = page.address.empty() ? "this machine's address" : "the address " + htmlText(page.address);
  body += "<p>To join, start the game and type " + address + " and port " + std::to_string(page.port) +
          " into its connect dialog.";
  if (page.passwordRequired) body += " You need a password.";
  body += "</p>\n<p><a href=\"/games\">List of games</a></p>\n";
  body += htmlEnd;
  return htmlAnswer(std::move(body));
}

}  // namespace kelvora::server
