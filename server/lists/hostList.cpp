#include "server/lists/hostList.h"

#include <algorithm>

namespace kelvora::server {

namespace {

constexpr std::string_view endMark = endOfList.substr(0, endOfList.size() - 1);  // what clients look for

}  // namespace

// Clients look for the end mark anywhere, and split records at these characters anywhere.
std::string recordText(std::string_view text) {
  std::string field(text);
  std::ranges::replace_if(
      field,
      [](char c) {
        const auto code = static_cast<unsigned char>(c);
        return c == '|' || c == '[' || c == ']' || code < 32 || code == 127;
      },
      ' ');
  for (std::size_t at; (at = field.find(endMark)) != std::string::npos;) field[at] = ' ';
  return field;
}

bool matches(const HostEntry& host, std::string_view version, const HostQuery& query) {
  return query.version == version && host.port > 0 && host.port <= maxListedPort &&
         (query.withPassword || !host.passwordRequired) && (query.withFull || host.players < host.maxPlayers) &&
         (query.withEmpty || host.players > 0);
}

std::string hostRecord(const HostEntry& host) {
  return "[" + recordText(host.address) + "|" + std::to_string(host.port) + "|" + (host.passwordRequired ? "1" : "0") +
         "|" + recordText(host.notes) + "|" + std::to_string(host.players) + "|" + std::to_string(host.maxPlayers) +
         "]";
}

}  // namespace kelvora::server
