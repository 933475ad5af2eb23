#pragma once

#include <chrono>
#include <string>

namespace kelvora {

/// The turn to write the settings, held by one instance of the game at a time. The system releases it when the instance
/// ends in any way. An instance that holds it for longer than the patience of another counts as hanging and is ignored
/// from then on. A folder that can't be opened or locked is ignored as well. So the turn keeps instances from
/// disturbing one another, but `SettingsDraft` alone keeps them from losing values.
class SettingsTurn {
 public:
  SettingsTurn(const std::string& folder, std::chrono::milliseconds patience);
  ~SettingsTurn();
  SettingsTurn(const SettingsTurn&) = delete;
  SettingsTurn& operator=(const SettingsTurn&) = delete;

 private:
  int folder_;
};

}  // namespace kelvora
