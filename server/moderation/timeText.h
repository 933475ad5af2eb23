#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace kelvora::server {

/// Seconds, as a length or as a time since 1970 in UTC.
using Seconds = std::int64_t;

/// The end of what never ends.
inline constexpr Seconds never = std::numeric_limits<Seconds>::max();

/// Reads a length such as "90s", "30m", "2h" or "7d": up to a hundred years. "forever" is `never`.
std::optional<Seconds> readLength(std::string_view text);
/// The end of something that begins `now`.
constexpr Seconds endOf(Seconds now, Seconds length) { return length == never ? never : now + length; }

/// "2026-11-22T14:00:00Z", or "forever". The time must be in the years 1970 to 9999.
std::string timeText(Seconds time);
/// Reads such a text.
std::optional<Seconds> readTime(std::string_view text);
/// For a player: "until 2026-11-22 14:00 UTC", or "forever".
std::string untilText(Seconds time);

}  // namespace kelvora::server
