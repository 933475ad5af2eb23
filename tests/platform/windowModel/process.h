#pragma once

#include <memory>
#include <string>

#include "tests/platform/windowModel/walk.h"

namespace kelvora {

/// How the process of a walk has ended.
struct Ended {
  std::string report;   ///< the lines that it has written
  std::string failure;  ///< empty for status 0
};

/// Walks in a process of its own, which ends itself if it takes minutes.
Ended runApart(const Steps& steps);

/// True if closing the main window now ends the process. Where the process can't be copied to try it, returns true:
/// the end of each walk tries it.
bool closingEndsTheProcess();

/// Prepares the toolkit for walks, as long as the result exists. In a walk's own process, it may walk and not return.
std::shared_ptr<void> prepareWalks();

}  // namespace kelvora
