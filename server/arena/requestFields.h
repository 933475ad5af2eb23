#pragma once

#include <string_view>
#include <vector>

namespace kelvora::server {

/// The fields of a client's message, as text.
using RequestFields = std::vector<std::string_view>;

}  // namespace kelvora::server
