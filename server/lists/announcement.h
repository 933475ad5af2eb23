#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "base/outcome.h"
#include "server/lists/hostList.h"

namespace kelvora::server {

inline constexpr std::string_view publishPath = "/games/kelvora/publish";
inline constexpr std::size_t maxNotesLength = 200;  ///< bytes

/// A server's announcement to a list. An empty address means the one from which the announcement comes.
struct Announcement {
  std::string version;
  HostEntry host;

  bool operator==(const Announcement&) const = default;
};

/// True for up to 255 letters, digits, points, colons and hyphens, which can't break a record.
bool isListable(std::string_view address);

/// The announcement as a request's query: "version=9.8.7&address=...&port=2010&password=0&notes=...&players=1&max=6",
/// and "&watch=1" if it takes spectators.
std::string announcementQuery(const Announcement& announcement);

/// Parses the values of such a query. Refuses it, naming the invalid value, if a text is too long or would break a
/// record, or a number is out of range.
Outcome readAnnouncement(const std::function<std::string(std::string_view name)>& value, Announcement& announcement);

}  // namespace kelvora::server
