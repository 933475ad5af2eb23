#pragma once

#include "platform/winsock.h"

namespace kelvora {

/// The game's connection to the server, a control of the main window. Loads the window.
Winsock& gameSocket();

}  // namespace kelvora
