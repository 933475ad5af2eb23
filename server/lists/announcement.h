#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

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

/// Reads it from the values of such a query, by their names. The answer is what makes it unfit for a list, empty if
/// nothing does: texts that are too long or would break a record, numbers outside their bounds.
std::string readAnnouncement(const std::function<std::string(std::string_view name)>& value,
                             Announcement& announcement);

}  // namespace kelvora::server
