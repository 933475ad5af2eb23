#pragma once

#include <string>

namespace kelvora {

/// Asks the web host for the newest version and tells the player when it is not this one. Nothing else hangs on it, and
/// whatever fails in it fails without a word.
namespace updateCheck {

/// Starts the check, once in a run of the program; it goes on in the events of frmMain's sockUpdates.
void checkForUpdates();
/// Tells the player if the answer names a version other than the program's own.
void parseUpdateFile(const std::string& text);

// The events of sockUpdates.
void connected();
void dataArrived();
void closedByHost();

/// Back to the start of the process: no check has been made.
void clear();

}  // namespace updateCheck

}  // namespace kelvora
