#pragma once

#include <string>

#include "server/net/asio.h"

namespace kelvora::server {

/// The text of an error, in the same words on every system. Windows' own texts are long, and Wine has none for
/// socket errors.
std::string errorText(error_code error);

}  // namespace kelvora::server
