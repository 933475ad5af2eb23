#pragma once

#include <string>
#include <string_view>

namespace kelvora {

/// A text as a message box shows it: of a long one its beginning, with three points behind, that fills no more than the
/// half of a small screen. A word too long for a line may be broken. Costs the same for a text of any length.
std::u16string boxText(std::string_view text);

}  // namespace kelvora
