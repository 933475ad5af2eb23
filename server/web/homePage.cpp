#include "server/web/homePage.h"

#include "base/codePage.h"

namespace kelvora::server {

namespace {

std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : utf8FromCodePage(text)) {
    if (c == '&') {
      result += "&amp;";
    } else if (c == '<') {
      result += "&lt;";
    } else if (static_cast<unsigned char>(c) >= ' ') {
      result += c;
    }
  }
  return result;
}

std::string listOf(const std::vector<std::string>& names) {
  if (names.empty()) return {};
  std::string list = "<ul>\n";
  for (const std::string& name : names) list += "<li>" + escaped(name) + "</li>\n";
  return list + "</ul>\n";
}

}  // namespace

HttpAnswer homePageAnswer(const HomePage& page) {
  std::string body =
      "<!doctype html>\n<html lang=\"en\">\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width\">\n<title>Kelvora arena</title>\n"
      "<style>body{background:#101418;color:#d8e0e8;font:1.1em/1.5 sans-serif;max-width:36em;margin:3em auto;"
      "padding:0 1em}h1{color:#fff}li{color:#8cf}</style>\n<h1>Kelvora arena</h1>\n";
  if (!page.notes.empty()) body += "<p>" + escaped(page.notes) + "</p>\n";
  body +=
      "<p>" + std::to_string(page.players.size()) + " of " + std::to_string(page.maxPlayers) + " players are in.</p>\n";
  body += listOf(page.players);
  if (!page.bots.empty()) {
    body += "<p>Bots play until people take their places:</p>\n" + listOf(page.bots);
  }
  body += "<p>To join, start the game and type this machine's address and port " + std::to_string(page.port) +
          " into its connect dialog.";
  if (page.passwordRequired) body += " You need a password.";
  body += "</p>\n</html>\n";
  return {
      .body = std::move(body),
      .type = "text/html; charset=utf-8",
      .headers = {"Cache-Control: no-store", "Content-Security-Policy: default-src 'none'; style-src 'unsafe-inline'"},
      .mayKeepAlive = true};
}

}  // namespace kelvora::server
