#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kelvora::server {

/// The highest port that a list can name. Clients take none from 32767 on, and end if they read one beyond it.
inline constexpr std::uint16_t highestListedPort = 32'766;

/// What the list of published games says of a server.
struct HostEntry {
  std::string address;
  std::uint16_t port = 0;
  bool passwordRequired = false;
  std::string notes;
  std::size_t players = 0;
  std::size_t maxPlayers = 0;
};

/// What a client asks the list for.
struct HostQuery {
  std::string version;
  bool withPassword = true;  ///< hosts that ask for a password, too
  bool withFull = true;
  bool withEmpty = true;
};

/// Without what a record is made of, and what would end the list too early; blanks stand in its place.
std::string recordText(std::string_view text);

bool matches(const HostEntry& host, std::string_view version, const HostQuery& query);

/// "[address|port|password|notes|players|maxPlayers]", the password being 0 or 1.
std::string hostRecord(const HostEntry& host);

/// The body of the answer: the record of the host if that matches, the records of the others, and the end mark. Nothing
/// stands between two records: clients would take it for the beginning of the next address.
std::string hostList(const HostEntry& host, std::string_view version, const HostQuery& query,
                     const std::string& others = {});

/// The body of the file that clients compare their version with.
std::string updateFile(std::string_view version);

/// The path within the host: "http://host:80/a" is "/a", and "/a" stays. "/" for an absolute address without a path.
std::string_view pathOf(std::string_view target);

}  // namespace kelvora::server
