#pragma once

#include <set>
#include <string>
#include <vector>

#include "tests/platform/windowModel/steps.h"

namespace kelvora {

using Steps = std::vector<const Step*>;

/// The result of a walk.
struct Findings {
  std::string complaint;       ///< the first broken rule and the step before it; empty if none was broken
  std::set<std::string> seen;  ///< the situations that the checks met, in words
};

/// Starts the whole game in its own process, takes the steps, and checks after each one:
/// - While no modal form and no box is visible, every window takes clicks, the main window also takes keys, and closing
///   it ends the process.
/// - Otherwise the newest modal form or box takes clicks, and no other form does.
/// At the end the user closes all modal windows with their own buttons, and then the main window. A crash, a run-time
/// fault and a process that hangs are complaints too.
Findings walk(const Steps& steps);

/// Drops all steps that a complaint doesn't need.
Steps shortest(Steps steps);

}  // namespace kelvora
