#pragma once

#include <string>
#include <string_view>

namespace kelvora {

/// The text that a message box shows. A long text is cut off with an ellipsis, so that it fills at most half of a small
/// screen. Words too long for a line may be broken. The cost doesn't depend on the text's length.
std::u16string boxText(std::string_view text);

}  // namespace kelvora
