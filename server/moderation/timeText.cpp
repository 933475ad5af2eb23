#include "server/moderation/timeText.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <utility>

#include "base/numberFromText.h"
#include "base/search.h"

namespace kelvora::server {

namespace {

constexpr std::string_view forever = "forever";
constexpr Seconds secondsPerDay = 86'400;
constexpr Seconds maxLength = 100 * 365 * secondsPerDay;
constexpr std::array<std::pair<char, Seconds>, 4> units = {{{'s', 1}, {'m', 60}, {'h', 3'600}, {'d', secondsPerDay}}};

/// The digits as a number, or nothing if there is anything else.
std::optional<int> digits(std::string_view text) {
  return text.find_first_not_of("0123456789") == text.npos ? numberFromText<int>(text) : std::nullopt;
}

}  // namespace

std::optional<Seconds> readLength(std::string_view text) {
  if (text == forever) return never;
  if (text.size() < 2) return std::nullopt;
  const auto unit = findIf(units, [&](const auto& entry) { return entry.first == text.back(); });
  const auto count = digits(text.substr(0, text.size() - 1));
  if (!unit || !count || *count < 1 || *count > maxLength / unit->second) return std::nullopt;
  return *count * unit->second;
}

std::string timeText(Seconds time) {
  if (time == never) return std::string(forever);
  const std::chrono::sys_seconds moment{std::chrono::seconds(time)};
  const auto day = std::chrono::floor<std::chrono::days>(moment);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(moment - day);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return text.data();
}

std::optional<Seconds> readTime(std::string_view text) {
  if (text == forever) return never;
  constexpr std::string_view form = "0000-00-00T00:00:00Z";
  if (text.size() != form.size()) return std::nullopt;
  for (std::size_t i = 0; i < form.size(); ++i) {
    if (form[i] != '0' && text[i] != form[i]) return std::nullopt;
  }
  const auto year = digits(text.substr(0, 4));
  const auto month = digits(text.substr(5, 2));
  const auto dayOfMonth = digits(text.substr(8, 2));
  const auto hour = digits(text.substr(11, 2));
  const auto minute = digits(text.substr(14, 2));
  const auto second = digits(text.substr(17, 2));
  if (!year || !month || !dayOfMonth || !hour || !minute || !second) return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
                                         std::chrono::day(static_cast<unsigned>(*dayOfMonth))};
  if (*year < 1970 || !date.ok() || *hour > 23 || *minute > 59 || *second > 59) return std::nullopt;
  return Seconds{std::chrono::sys_days(date).time_since_epoch().count()} * secondsPerDay + *hour * 3'600 +
         *minute * 60 + *second;
}

std::string untilText(Seconds time) {
  if (time == never) return std::string(forever);
  std::string text = timeText(time).substr(0, 16);  // without the seconds
  text[10] = ' ';
  return "until " + text + " UTC";
}

}  // namespace kelvora::server
