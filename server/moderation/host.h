#pragma once

#include <string>

#include "server/arena/clientId.h"
#include "server/system/serverHost.h"

namespace kelvora::server {

/// The server as moderation sees it, besides the arena and its bots.
class ModerationHost : public ServerHost {
 public:
  /// The network of a person, see `networkOf`.
  virtual std::string network(ClientId client) const = 0;
  /// Logs what a moderator has done. Unlike other lines, it is never dropped.
  virtual void logAct(const std::string& line) = 0;
};

}  // namespace kelvora::server
