#pragma once

#include <string>

namespace kelvora {

/// Records what the game is about to do, for the error box of a subsequent fault. Valid until the next note or until
/// the outermost handler ends.
void noteForReport(std::string what);

/// Names the file with the game's recording, for the error box of a fault.
void nameRecording(std::string file);

/// Shows the error box and ends the process with status 1. No handler runs any more while the box is open.
[[noreturn]] void reportFault(const char* what);
/// True once `reportFault` has been called.
bool isFaultReported();

/// Shows an error and what the user can do about it, until the box is closed.
using FaultBox = void(const std::string& error, const std::string& advice);
/// Sets the backend's error box.
void setFaultBox(FaultBox* box);

}  // namespace kelvora
