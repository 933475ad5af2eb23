#pragma once

#include <string_view>
#include <vector>

namespace kelvora::server {

/// The fields of a message that a client sent, as text.
using RequestFields = std::vector<std::string_view>;

}  // namespace kelvora::server
