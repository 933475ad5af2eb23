#pragma once

#include <string>

namespace kelvora::server {

/// Where rounds are recorded, and how much of them is kept.
struct ReplaySettings {
  std::string folder;      ///< in UTF-8; empty for no recordings
  int maxCount = 100;      ///< files
  int maxMebibytes = 100;  ///< of all files
};

}  // namespace kelvora::server
