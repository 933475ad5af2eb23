#include "server/moderation/vote.h"

#include <algorithm>

namespace kelvora::server {

int Vote::votes(const std::set<std::string>& present) const {
  return static_cast<int>(std::count_if(voters_.begin(), voters_.end(),
                                        [&](const std::string& network) { return present.contains(network); }));
}

}  // namespace kelvora::server
