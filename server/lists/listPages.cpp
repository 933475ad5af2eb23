#include "server/lists/listPages.h"

#include "server/http/html.h"
#include "server/lists/announcement.h"
#include "server/lists/listTable.h"

namespace kelvora::server {

namespace {

constexpr std::string_view updatePath = "/games/kelvora/ver.txt";
constexpr std::string_view listPath = "/games/kelvora/gethosts.php";
constexpr std::string_view tablePath = "/games";

/// Compares in constant time, to reveal nothing about the difference.
bool equalsInConstantTime(std::string_view one, std::string_view other) {
  if (one.size() != other.size()) return false;
  int difference = 0;
  for (std::size_t i = 0; i < one.size(); ++i) difference |= one[i] ^ other[i];
  return difference == 0;
}

HttpAnswer answerOf(HostRegistry::Answer answer) {
  switch (answer) {
    case HostRegistry::Answer::notOwner:
      return textAnswer(409, "That address and port have been published by another host.\n");
    case HostRegistry::Answer::tooManyFromNetwork:
      return textAnswer(429, "Too many servers have been published from your address.\n");
    case HostRegistry::Answer::full:
      return textAnswer(503, "The list is full.\n");
    default:
      return textAnswer(200, "Done.\n");
  }
}

HostQuery hostQuery(const HttpRequest& request) {
  return {.version = request.argument("version"),
          .withPassword = request.argument("password") != "0",
          .withFull = request.argument("full") != "0",
          .withEmpty = request.argument("empty") != "0"};
}

/// The body of the file with which clients compare their version.
std::string updateFile(std::string_view version) {
  // Clients ignore the last character of the answer.
  return "tvqver:" + std::string(version) + "\n";
}

}  // namespace

bool ListPages::has(std::string_view path) {
  return path == updatePath || path == listPath || path == tablePath || path == publishPath;
}

HttpAnswer ListPages::answer(const HttpRequest& request, const Requester& requester, Millis now) {
  const std::string_view path = request.path();
  if (path == publishPath) {
    if (request.method == "POST" || request.method == "DELETE") return announce(request, requester, now);
    return methodNotAllowed("POST, DELETE", "Servers publish themselves here.\n");
  }
  if (request.method != "GET" && !request.isHead()) return methodNotAllowed("GET, HEAD", "Only GET is served here.\n");
  if (path == updatePath) return textAnswer(200, updateFile(version_));
  return path == tablePath ? table(now) : listing(hostQuery(request), now);
}

HttpAnswer ListPages::listing(const HostQuery& query, Millis now) {
  HttpAnswer answer = textAnswer(200, "");
  if (host_) {
    HostEntry own = *host_;
    if (own.address.empty()) own.address = ownAddress_;
    if (matches(own, version_, query)) answer.body = hostRecord(own);
  }
  answer.append(registry_.listing(query, now));
  return answer;
}

HttpAnswer ListPages::table(Millis now) {
  HttpAnswer answer = htmlAnswer(listTableBegin() + (host_ ? listTableRow(*host_) : ""));
  answer.append(registry_.table(now));
  return answer;
}

HttpAnswer ListPages::announce(const HttpRequest& request, const Requester& requester, Millis now) {
  if (!key_.empty() && !equalsInConstantTime(request.authorization, "Bearer " + key_)) {
    return textAnswer(403, "This list needs a key.\n");
  }
  Announcement announcement;
  const Outcome outcome = readAnnouncement([&](std::string_view name) { return request.argument(name); }, announcement);
  if (outcome.isRefused()) return textAnswer(400, "The list refuses this announcement: " + outcome.reason() + "\n");
  if (announcement.host.address.empty()) announcement.host.address = requester.address;
  if (request.method == "DELETE") return answerOf(registry_.withdraw(requester.network, announcement.host, now));
  const bool isTrusted = requester.isTrusted || !key_.empty();
  return answerOf(registry_.announce(requester.network, announcement, now, isTrusted));
}

}  // namespace kelvora::server
