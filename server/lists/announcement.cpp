#include "server/lists/announcement.h"

#include <algorithm>
#include <optional>

#include "base/numberFromText.h"

namespace kelvora::server {

namespace {

constexpr std::size_t maxVersionLength = 16;
constexpr std::size_t maxAddressLength = 255;
constexpr std::uint16_t maxPlaces = 1'000;

bool isLetterOrDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

std::string escape(std::string_view text) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string escaped;
  for (const char c : text) {
    if (isLetterOrDigit(c) || c == '-' || c == '.') {
      escaped += c;
    } else {
      const auto code = static_cast<unsigned char>(c);
      escaped += {'%', digits[code >> 4], digits[code & 15]};
    }
  }
  return escaped;
}

/// True if the text consists of letters, digits and `others`.
bool consistsOf(std::string_view text, std::string_view others) {
  return std::ranges::all_of(text,
                             [&](char c) { return isLetterOrDigit(c) || others.find(c) != std::string_view::npos; });
}

std::optional<std::uint16_t> number(const std::string& text, std::uint16_t min, std::uint16_t max) {
  const auto value = numberFromText<std::uint16_t>(text);
  return value && *value >= min && *value <= max ? value : std::nullopt;
}

}  // namespace

bool isListable(std::string_view address) { return address.size() <= maxAddressLength && consistsOf(address, ".:-"); }

std::string announcementQuery(const Announcement& announcement) {
  const HostEntry& host = announcement.host;
  return "version=" + escape(announcement.version) + "&address=" + escape(host.address) +
         "&port=" + std::to_string(host.port) + "&password=" + (host.passwordRequired ? "1" : "0") +
         "&notes=" + escape(recordText(host.notes)) + "&players=" + std::to_string(host.players) +
         "&max=" + std::to_string(host.maxPlayers) + (host.mayWatch ? "&watch=1" : "");
}

Outcome readAnnouncement(const std::function<std::string(std::string_view name)>& value, Announcement& announcement) {
  announcement.version = value("version");
  if (announcement.version.empty() || announcement.version.size() > maxVersionLength ||
      !consistsOf(announcement.version, ".")) {
    return Outcome::refused("version");
  }
  HostEntry& host = announcement.host;
  host.address = value("address");
  if (!isListable(host.address)) return Outcome::refused("address");
  const auto port = number(value("port"), 1, maxListedPort);
  if (!port) return Outcome::refused("port");
  host.port = *port;
  const auto password = number(value("password"), 0, 1);
  if (!password) return Outcome::refused("password");
  host.passwordRequired = *password == 1;
  host.notes = value("notes");
  if (host.notes.size() > maxNotesLength || recordText(host.notes) != host.notes) return Outcome::refused("notes");
  const auto places = number(value("max"), 1, maxPlaces);
  if (!places) return Outcome::refused("max");
  host.maxPlayers = *places;
  const auto players = number(value("players"), 0, *places);
  if (!players) return Outcome::refused("players");
  host.players = *players;
  const std::string watch = value("watch");
  if (!watch.empty() && watch != "0" && watch != "1") return Outcome::refused("watch");
  host.mayWatch = watch == "1";
  return Outcome::done();
}

}  // namespace kelvora::server
