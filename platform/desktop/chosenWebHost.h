#pragma once

#include <string>

namespace kelvora {

/// The web host: KELVORA_WEB_HOST of the environment, or else the one that the build names.
std::string chosenWebHost();

}  // namespace kelvora
