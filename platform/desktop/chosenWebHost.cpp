#include "platform/desktop/chosenWebHost.h"

#include <cstdlib>

namespace kelvora {

std::string chosenWebHost() {
  const char* chosen = std::getenv("KELVORA_WEB_HOST");
  return chosen == nullptr || *chosen == '\0' ? KELVORA_DEFAULT_WEB_HOST : chosen;
}

}  // namespace kelvora
