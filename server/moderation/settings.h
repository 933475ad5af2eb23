#pragma once

#include <string>

namespace kelvora::server {

/// The operator's settings.
struct ModerationSettings {
  std::string moderatorHash;  ///< hash of the moderators' password; empty for no moderators
  std::string bansFile;       ///< path in UTF-8; empty to keep bans and mutes until the end of the process only
};

}  // namespace kelvora::server
