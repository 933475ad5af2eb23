#include "server/http/homePage.h"

#include <utility>

#include "server/http/html.h"

namespace kelvora::server {

namespace {

std::string listOf(const std::vector<std::string>& names) {
  if (names.empty()) return {};
  std::string list = "<ul>\n";
  for (const std::string& name : names) list += "<li>" + htmlText(name) + "</li>\n";
  return list + "</ul>\n";
}

std::string tableOf(const RecordTable& table) {
  if (table.rows.empty()) return {};
  std::string text = "<h2>" + htmlText(table.title) + "</h2>\n<table>\n";
  text += "<tr><th>Player</th><th>Captures</th><th>Wins</th><th>Rounds</th><th>Minutes</th></tr>\n";
  for (const RecordTable::Row& row : table.rows) {
    text += "<tr><td>" + htmlText(row.name) + "</td>";
    for (const std::int64_t number : {row.captures, row.wins, row.rounds, row.minutes}) {
      text += "<td>" + std::to_string(number) + "</td>";
    }
    text += "</tr>\n";
  }
  return text + "</table>\n";
}

}  // namespace

HttpAnswer homePageAnswer(const HomePage& page) {
  std::string body = htmlBegin("Kelvora arena");
  if (!page.notes.empty()) body += "<p>" + htmlText(page.notes) + "</p>\n";
  body += "<p>Players: " + std::to_string(page.players.size()) + " of " + std::to_string(page.maxPlayers) + "</p>\n";
  body += listOf(page.players);
  if (!page.bots.empty()) {
    body += "<p>Bots play until people take their places:</p>\n" + listOf(page.bots);
  }
  if (page.hasSite) {
    body += "<p><a href=\"/\">Play</a>";
    if (page.spectatorPort != 0) body += " or <a href=\"/watch\">watch</a>";
    body += " in the browser.</p>\n";
  }
  const std::string address = page.address.empty() ? "this machine's address" : "the address " + htmlText(page.address);
  body += "<p>To join, start the game and type " + address + " and port " + std::to_string(page.port) +
          " into its connect dialog.";
  if (page.passwordRequired) body += " You need a password.";
  body += "</p>\n";
  if (page.spectatorPort != 0) body += "<p>To watch, do so with port " + std::to_string(page.spectatorPort) + ".</p>\n";
  for (const RecordTable& table : page.records) body += tableOf(table);
  body += "<p><a href=\"/games\">List of games</a></p>\n";
  body += htmlEnd;
  return htmlAnswer(std::move(body));
}

}  // namespace kelvora::server
