#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace kelvora::server {

/// Takes a setting; the answer is what is wrong with it, empty if nothing is.
using TakeSetting = std::function<std::string(std::string_view name, const std::string& value)>;

/// Reads lines of the form `name = value`, with blanks around either as one likes. Empty lines and those that begin
/// with # say nothing; a # further on belongs to the value. A name may stand once. The answer is the first thing that
/// is wrong, behind "`fileName`:LINE: "; empty if nothing is.
std::string readConfig(std::string_view text, const std::string& fileName, const TakeSetting& take);

/// The same with the text of the file, which is at most 64 KiB long.
std::string readConfigFile(const std::string& fileName, const TakeSetting& take);

}  // namespace kelvora::server
