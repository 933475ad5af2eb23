#include "platform/desktop/processFaults.h"

#include <csignal>
#include <cstdlib>

namespace kelvora {

namespace {

// Without a connection to the X server, destructors of static objects would crash while destroying windows.
void endAtOnce(int status, void*) { std::_Exit(status); }

}  // namespace

void ignoreFatalSignals() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  ::on_exit(endAtOnce, nullptr);
}

}  // namespace kelvora
