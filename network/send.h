#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kelvora::netMan {

/// Builds one frame and sends it. Drops it silently unless the socket is connected.
void sendMessage(std::int16_t id, const std::vector<std::string>& fields);

}  // namespace kelvora::netMan
