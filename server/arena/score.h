#pragma once

#include <string>

#include "base/millis.h"
#include "server/arena/clientId.h"

namespace kelvora::server {

/// A person's score in a round.
struct Score {
  ClientId client = 0;
  std::string name{};
  int captures = 0;
  bool isWinner = false;
  Millis joined = 0;  ///< when the person logged in
};

}  // namespace kelvora::server
