#include "platform/desktop/processFaults.h"

#include <csignal>
#include <cstdlib>

namespace kelvora {

namespace {

// The windows would be destroyed by the destructors of static objects, without a connection to the X server.
void endAtOnce(int status, void*) { std::_Exit(status); }

}  // namespace

void outliveFaults() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  ::on_exit(endAtOnce, nullptr);
}

}  // namespace kelvora
