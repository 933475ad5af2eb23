#include "server/arena/names.h"

#include <algorithm>
#include <array>

#include "base/search.h"
#include "base/text.h"
#include "server/arena/plainText.h"

namespace kelvora::server {

namespace {

constexpr char noBreakBlank = '\xA0';
constexpr char softHyphen = '\xAD';  // invisible

// The letters that bytes from 128 on look like, 16 in a row. Quotes, dashes and accents alone look like nothing.
constexpr std::array<std::string_view, 128> upperHalf = {
    "",  "",  "",  "f", "",  "",  "t",  "t", "",  "",   "s", "",  "oe", "",   "z",  "",   // 80
    "",  "",  "",  "",  "",  "",  "",   "",  "",  "tm", "s", "",  "oe", "",   "z",  "y",  // 90
    "",  "l", "c", "l", "o", "y", "l",  "s", "",  "c",  "a", "",  "",   "",   "r",  "",   // A0
    "o", "",  "2", "3", "",  "u", "p",  "",  "",  "l",  "o", "",  "l4", "l2", "34", "",   // B0
    "a", "a", "a", "a", "a", "a", "ae", "c", "e", "e",  "e", "e", "l",  "l",  "l",  "l",  // C0
    "d", "n", "o", "o", "o", "o", "o",  "x", "o", "u",  "u", "u", "u",  "y",  "p",  "b",  // D0
    "a", "a", "a", "a", "a", "a", "ae", "c", "e", "e",  "e", "e", "l",  "l",  "l",  "l",  // E0
    "d", "n", "o", "o", "o", "o", "o",  "",  "o", "u",  "u", "u", "u",  "y",  "p",  "y",  // F0
};

constexpr std::string_view confusing = "i1|!05$8@";  // ASCII, each with the letter below it
constexpr std::string_view plainLetter = "llllossba";
static_assert(confusing.size() == plainLetter.size());

// Names that the server has or could be taken for.
constexpr std::array serverNames = {"server", "the server",    "kelvora",   "kelvora server", "system",  "admin",
                                    "admins", "administrator", "moderator", "operator",       "console", "coach"};

void replaceAll(std::string& text, std::string_view what, std::string_view by) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos;) text.replace(at, what.size(), by);
}

bool looksLikeTheServer(std::string_view name) {
  const std::string skeleton = skeletonOf(name);
  return anyOf(serverNames, [&](const char* known) {
    const std::string word = skeletonOf(known);
    // A number, whose skeleton may have letters, makes no difference.
    return skeleton.starts_with(word) && skeleton.find_first_not_of("0123456789lsbo", word.size()) == skeleton.npos;
  });
}

}  // namespace

std::string visibleName(std::string_view name) {
  std::string visible;
  for (char c : name) {
    if (c == softHyphen) continue;
    if (c == noBreakBlank) c = ' ';
    if (c != ' ' || !visible.ends_with(' ')) visible += c;
  }
  return trimBlanks(visible);
}

std::string skeletonOf(std::string_view name) {
  std::string skeleton;
  for (const char c : name) {
    const auto code = static_cast<unsigned char>(c);
    if (code >= 128) {
      skeleton += upperHalf[code - 128U];
      continue;
    }
    const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    if (const std::size_t at = confusing.find(lower); at != confusing.npos) {
      skeleton += plainLetter[at];
    } else if ((lower >= 'a' && lower <= 'z') || (lower >= '0' && lower <= '9')) {
      skeleton += lower;
    }
  }
  replaceAll(skeleton, "rn", "m");
  replaceAll(skeleton, "vv", "w");
  return skeleton;
}

Outcome checkName(std::string_view name) {
  if (visibleName(name).empty()) return Outcome::refused("A name is needed.");
  if (name.size() > maxNameLength) {
    return Outcome::refused("The name is longer than " + std::to_string(maxNameLength) + " characters.");
  }
  if (anyOf(name, isControl)) return Outcome::refused("The name contains control characters.");
  // Clients show lines as "[name] text". A bracket in a name could end it, and begin a line of somebody else.
  if (name.find_first_of("[]") != name.npos) return Outcome::refused("A name can't contain square brackets.");
  if (looksLikeTheServer(name)) return Outcome::refused("The name looks like the server's. Choose another one.");
  return Outcome::done();
}

std::string commonSkeleton(std::string_view name) {
  constexpr std::size_t uncut = maxNameLength - std::string_view(" 999").size();
  std::string skeleton = skeletonOf(name.substr(0, uncut));
  // The letter at the cut may be half of one that looks like two.
  if (name.size() > uncut && !skeleton.empty()) skeleton.pop_back();
  return skeleton;
}

std::string distinctName(std::string_view name, const std::vector<std::string>& skeletons) {
  std::string distinct(name);
  const auto isTaken = [&] {
    return anyOf(skeletons, [skeleton = skeletonOf(distinct)](const auto& taken) { return taken == skeleton; });
  };
  for (int number = 2; isTaken(); ++number) {
    const std::string ending = " " + std::to_string(number);
    distinct = trimBlanks(name.substr(0, maxNameLength - ending.size())) + ending;
  }
  return distinct;
}

}  // namespace kelvora::server
