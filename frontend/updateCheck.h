#pragma once

#include <string>

namespace kelvora {

/// Asks the web host for the newest version, and tells the player if it isn't the running one. Failures are silent.
namespace updateCheck {

/// Starts the check, once per run of the program. It continues in the events of frmMain's sockUpdates.
void checkForUpdates();
/// Tells the player if the answer names a version other than the program's.
void parseUpdateFile(const std::string& text);

// Event handlers of sockUpdates.
void connected();
void dataArrived();
void closedByHost();

/// Resets to the initial state: no check has been made.
void clear();

}  // namespace updateCheck

}  // namespace kelvora
