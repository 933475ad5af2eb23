#include "server/http/html.h"

#include <utility>

#include "base/codePage.h"

namespace kelvora::server {

std::string htmlText(std::string_view text) {
  std::string result;
  for (const char c : utf8FromCodePage(text)) {
    if (c == '&') {
      result += "&amp;";
    } else if (c == '<') {
      result += "&lt;";
    } else if (c == '"') {
      result += "&quot;";
    } else if (static_cast<unsigned char>(c) >= ' ' && c != '\x7F') {
      result += c;
    }
  }
  return result;
}

std::string htmlBegin(std::string_view title) {
  return "<!doctype html>\n<html lang=\"en\">\n<meta charset=\"utf-8\">\n"
         "<meta name=\"viewport\" content=\"width=device-width\">\n<title>" +
         std::string(title) +
         "</title>\n"
         "<style>body{background:#101418;color:#d8e0e8;font:1.1em/1.5 sans-serif;max-width:48em;margin:3em auto;"
         "padding:0 1em}h1{color:#fff}a{color:#8cf}td,th{text-align:left;padding:.2em 1em .2em 0;"
         "vertical-align:top;overflow-wrap:anywhere}th{overflow-wrap:normal}"
         // On phones, a game's notes have a line of their own, with everything else below.
         "@media(max-width:36em){.games tr:first-child{display:none}.games tr{display:block;padding:.5em 0}"
         ".games td{display:inline-block;padding:0 .5em 0 0}.games td:first-child{display:block;color:#fff}"
         ".games td:nth-child(2)::after{content:' players'}.games td:nth-child(4)::before{content:'port "
         "'}}</style>\n<h1>" +
         std::string(title) + "</h1>\n";
}

HttpAnswer htmlAnswer(std::string body) {
  return {
      .body = std::move(body),
      .type = "text/html; charset=utf-8",
      .headers = {"Cache-Control: no-store", "Content-Security-Policy: default-src 'none'; style-src 'unsafe-inline'"},
      .mayKeepAlive = true};
}

HttpAnswer messagePage(unsigned int status, std::string_view title, std::string_view text) {
  HttpAnswer answer = htmlAnswer(htmlBegin(title) + "<p>" + htmlText(text) +
                                 "</p>\n<p><a href=\"/\">The start page</a></p>\n" + std::string(htmlEnd));
  answer.status = status;
  answer.mayKeepAlive = false;
  return answer;
}

}  // namespace kelvora::server
