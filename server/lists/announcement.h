#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "base/outcome.h"
#include "server/lists/hostList.h"

namespace kelvora::server {

inline constexpr std::string_view publishPath = "/games/kelvora/publish";
inline constexpr std::size_t longestNotes = 200;  ///< bytes

/// What a server tells a list about itself. An empty address means the one that the announcement comes from.
struct Announcement {
  std::string version;
  HostEntry host;
};

/// The query of the request that carries it:
/// "version=1.2.1&address=...&port=2010&password=0&notes=...&players=1&max=6".
std::string announcementQuery(const Announcement& announcement);

/// Reads it from the values of such a query, by their names. It is refused, by the name of the value at fault, if a
/// text is too long or would break a record, or a number is outside its bounds.
Outcome readAnnouncement(const std::function<std::string(std::string_view name)>& value, Announcement& announcement);

}  // namespace kelvora::server
