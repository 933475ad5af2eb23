#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "server/arena/playerView.h"
#include "server/arena/spectator.h"

namespace kelvora::server {

/// For somebody who has named a player that isn't here.
inline constexpr const char* nobodyHasThatName = "Nobody here has that name or colour.";

/// Cuts the first word off, and the blanks around it. Empty if there is none.
std::string_view takeWord(std::string_view& text);

/// Cuts a player's name off the beginning of a text. Upper and lower case, accents and punctuation don't matter. Of
/// several names that fit, the longest counts, so names may contain blanks. The word for a player's colour does, too.
/// Null, with the text unchanged, if nobody fits.
const PlayerView* takePlayer(std::string_view& text, const std::vector<PlayerView>& players);

/// The same for a spectator, who has no colour.
const Spectator* takeSpectator(std::string_view& text, const std::map<ClientId, Spectator>& spectators);

}  // namespace kelvora::server
