#include "server/moderation/commandLine.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

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

const std::string& nameOf(const PlayerView& player) { return player.name; }
const std::string& nameOf(const std::pair<const ClientId, Spectator>& spectator) { return spectator.second.name; }

/// Cuts the longest name of these people off the beginning of a text. Null if nobody fits.
template <class People>
auto takeNamed(std::string_view& text, const People& people) -> decltype(&*std::begin(people)) {
  const std::string_view whole = withoutBlanks(text);
  // From the longest beginning to the shortest. A typed name may be longer than the real one by its punctuation.
  for (std::size_t end = std::min(whole.size(), 2 * maxNameLength); end > 0; --end) {
    if (end < whole.size() && whole[end] != ' ') continue;
    const std::string skeleton = skeletonOf(whole.substr(0, end));
    const auto found = findIf(people, [&](const auto& person) {
      const std::string& name = nameOf(person);
      return name == whole.substr(0, end) || (!skeleton.empty() && skeletonOf(name) == skeleton);
    });
    if (!found) continue;
    text = withoutBlanks(whole.substr(end));
    return found;
  }
  return nullptr;
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
  if (const auto named = takeNamed(text, players)) return named;
  std::string_view rest = withoutBlanks(text);
  const std::string word = lowerCase(takeWord(rest));
  const auto found = findIf(players, [&](const PlayerView& player) {
    return lowerCase(rules::colourNames[static_cast<std::size_t>(player.colour)]) == word;
  });
  if (found) text = rest;
  return found;
}

const Spectator* takeSpectator(std::string_view& text, const std::map<ClientId, Spectator>& spectators) {
  const auto found = takeNamed(text, spectators);
  return found ? &found->second : nullptr;
}

}  // namespace kelvora::server
