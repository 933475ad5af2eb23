#pragma once

#include <string>

#include "server/net/asio.h"

namespace kelvora::server {

/// What went wrong, in the same words on every system. Windows and Wine have long or no texts for socket errors.
std::string errorText(error_code error);

}  // namespace kelvora::server
