#include "server/lists/listTable.h"

#include "server/http/html.h"

namespace kelvora::server {

std::string listTableBegin() {
  return htmlBegin("Kelvora games") + "<table class=\"games\">\n<tr><th>Game<th>Players<th>Address<th>Port<td></tr>\n";
}

std::string listTableRow(const HostEntry& host) {
  const std::string address = htmlText(host.address);
  const std::string port = std::to_string(host.port);
  const bool isIpv6 = host.address.find(':') != std::string::npos;
  const std::string authority = (isIpv6 ? "[" + address + "]" : address) + ":" + port;
  const std::string place = host.address.empty() ? "" : "http://" + authority;
  const std::string name = address.empty() ? "this server" : authority;
  const auto link = [&](const char* path, const char* action) {
    return "<a href=\"" + place + path + "\" aria-label=\"" + action + " at " + name + "\">" + action + "</a>";
  };
  const std::string notes = host.notes.empty() ? "(no description)" : htmlText(host.notes);
  return "<tr><td>" + notes + (host.passwordRequired ? " (password)" : "") + "<td>" + std::to_string(host.players) +
         " of " + std::to_string(host.maxPlayers) + "<td>" + (address.empty() ? "this server" : address) + "<td>" +
         port + "<td>" + link("/", "Play") + (host.mayWatch ? " " + link("/watch", "Watch") : "") + "</tr>\n";
}

std::string listTableEnd() {
  return "</table>\n<p>Bots don't count. In the game, <i>Get List</i> in the connect dialog shows the same "
         "games.</p>\n" +
         std::string(htmlEnd);
}

}  // namespace kelvora::server
