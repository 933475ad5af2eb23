#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "base/outcome.h"

namespace kelvora::server {

/// Takes a setting, or refuses it.
using TakeSetting = std::function<Outcome(std::string_view name, const std::string& value)>;

/// Reads lines of the form `name = value`, with blanks around either as one likes. Empty lines and those that begin
/// with # say nothing; a # further on belongs to the value. A name may stand once. The first
/// fault refuses the text, with "`fileName`:LINE: " in front of it.
Outcome readConfig(std::string_view text, const std::string& fileName, const TakeSetting& take);

/// The same with the text of the file, which is at most 64 KiB long.
Outcome readConfigFile(const std::string& fileName, const TakeSetting& take);

}  // namespace kelvora::server
