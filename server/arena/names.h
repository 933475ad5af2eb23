#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/outcome.h"

namespace kelvora::server {

inline constexpr std::size_t maxNameLength = 32;  ///< bytes

/// The name as others see it: no invisible letters, no blanks at its ends, single blanks in between.
std::string visibleName(std::string_view name);

/// Names that look alike have the same skeleton. It ignores case, accents, blanks and punctuation, and has one letter
/// for each group of letters that are hard to tell apart, such as O and 0.
std::string skeletonOf(std::string_view name);

/// Refuses a name that nobody may have, with a text for the player.
Outcome checkName(std::string_view name);

/// The beginning of the name's skeleton, whatever number `distinctName` gives it up to 999.
std::string commonSkeleton(std::string_view name);

/// The name, with a number from 2 on if one of the skeletons is the same. At most `maxNameLength` bytes if the name is.
std::string distinctName(std::string_view name, const std::vector<std::string>& skeletons);

}  // namespace kelvora::server
