#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/millis.h"

namespace kelvora {

/// A time as minutes and seconds, with hours if there are any: "1:02:03".
std::string clockText(Millis time);
/// The ms of such a text, or of seconds alone. Nothing if it is no time.
std::optional<Millis> timeFromText(std::string_view text);

}  // namespace kelvora
