#pragma once

#include <string>
#include <string_view>

namespace kelvora {

/// What a text box keeps of a pasted text: a line without control characters. Line breaks and tabs become blanks, but
/// are dropped at the ends.
std::string cleanLine(std::string_view text);

}  // namespace kelvora
