#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>

namespace kelvora::server {

/// The highest port in a list. Clients refuse port 32767, and end with a fault at a higher one in a list.
inline constexpr std::uint16_t maxListedPort = 32'766;

/// A server's entry in the list of published games.
struct HostEntry {
  std::string address;
  std::uint16_t port = 0;
  bool passwordRequired = false;
  std::string notes;
  std::size_t players = 0;
  std::size_t maxPlayers = 0;
  bool mayWatch = false;  ///< takes spectators; in pages only

  bool operator==(const HostEntry&) const = default;
};

/// A client's query.
struct HostQuery {
  std::string version;
  bool withPassword = true;  ///< includes hosts with a password
  bool withFull = true;
  bool withEmpty = true;

  bool operator<(const HostQuery& other) const {
    return std::tie(version, withPassword, withFull, withEmpty) <
           std::tie(other.version, other.withPassword, other.withFull, other.withEmpty);
  }
};

/// Replaces a record's delimiters and the end mark by blanks.
std::string recordText(std::string_view text);

/// True if a host of this version belongs in the answer to the query.
bool matches(const HostEntry& host, std::string_view version, const HostQuery& query);

/// "[address|port|password|notes|players|maxPlayers]" with a password of 0 or 1.
std::string hostRecord(const HostEntry& host);

/// Ends a list. Nothing separates the records before it, because clients would take a separator for the beginning of
/// the next address.
inline constexpr std::string_view endOfList = "-END-\n";

}  // namespace kelvora::server
