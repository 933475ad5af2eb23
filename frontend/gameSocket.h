#pragma once

#include "platform/winsock.h"

namespace kelvora {

/// The game's connection to the server, a control of the main window. Loads that window.
Winsock& gameSocket();

}  // namespace kelvora
