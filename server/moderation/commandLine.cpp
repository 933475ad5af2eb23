#include "server/moderation/commandLine.h"

#include <algorithm>

#include "base/search.h"
#include "base/text.h"
#include "protocol/rules.h"
#include "server/arena/names.h"

namespace kelvora::server {

namespace {

std::string_view withoutBlanks(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  return text;
}

}  // namespace

std::string_view takeWord(std::string_view& text) {
  text = withoutBlanks(text);
  const std::size_t end = std::min(text.find(' '), text.size());
  const std::string_view word = text.substr(0, end);
  text = withoutBlanks(text.substr(end));
  return word;
}

const PlayerView* takePlayer(std::string_view& text, const std::vector<PlayerView>& players) {
  const std::string_view whole = withoutBlanks(text);
  // From the longest beginning to the shortest. A typed name may be longer than the real one by its punctuation.
  for (std::size_t end = std::min(whole.size(), 2 * maxNameLength); end > 0; --end) {
    if (end < whole.size() && whole[end] != ' ') continue;
    const std::string skeleton = skeletonOf(whole.substr(0, end));
    const auto found = findIf(players, [&](const PlayerView& player) {
      return player.name == whole.substr(0, end) || (!skeleton.empty() && skeletonOf(player.name) == skeleton);
    });
    if (!found) continue;
    text = withoutBlanks(whole.substr(end));
    return found;
  }
  std::string_view rest = whole;
  const std::string word = lowerCase(takeWord(rest));
  const auto found = findIf(players, [&](const PlayerView& player) {
    return lowerCase(rules::colourNames[static_cast<std::size_t>(player.colour)]) == word;
  });
  if (found) text = rest;
  return found;
}

}  // namespace kelvora::server
