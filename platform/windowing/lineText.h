#pragma once

#include <string>
#include <string_view>

namespace kelvora {

/// Returns the part of a pasted text that a text box keeps: a line without control characters. Line breaks and tabs
/// become blanks, but are dropped at the ends.
std::string cleanLine(std::string_view text);

}  // namespace kelvora
