#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "base/outcome.h"

namespace kelvora::server {

/// Applies a setting or refuses it.
using TakeSetting = std::function<Outcome(std::string_view name, const std::string& value)>;

/// Parses lines of the form `name = value`, with optional blanks around either. Ignores empty lines and lines that
/// begin with #. A # inside a value belongs to it. Each name may appear once. Stops at the first error and refuses the
/// text, with "`fileName`:LINE: " before the reason.
Outcome readConfig(std::string_view text, const std::string& fileName, const TakeSetting& take);

/// The same with the text of a file, at most 64 KiB.
Outcome readConfigFile(const std::string& fileName, const TakeSetting& take);

}  // namespace kelvora::server
