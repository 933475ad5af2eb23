#pragma once

#include <string>
#include <vector>

#include "base/outcome.h"

namespace kelvora::server {

/// Whether a login may use its name, which may be claimed by somebody.
struct NameVerdict {
  bool isPending = false;  ///< ask again
  Outcome outcome = Outcome::done();
  std::vector<std::string> claimed{};  ///< skeletons of claimed names that the name could become by a number
};

}  // namespace kelvora::server
