#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kelvora::server {

/// The entries of an option's value, separated by commas, without blanks around them. None of an empty text.
std::vector<std::string> commaList(std::string_view text);

}  // namespace kelvora::server
