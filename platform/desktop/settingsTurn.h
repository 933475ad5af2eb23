#pragma once

#include <string>

namespace kelvora {

/// The right to write the settings, held by one instance of the game at a time. The system releases it when the
/// instance ends in any way. If an instance holds it for more than two seconds, it counts as hanging and is ignored
/// from then on. A folder that can't be opened or locked is ignored as well.
class SettingsTurn {
 public:
  explicit SettingsTurn(const std::string& folder);
  ~SettingsTurn();
  SettingsTurn(const SettingsTurn&) = delete;
  SettingsTurn& operator=(const SettingsTurn&) = delete;

 private:
  int folder_;
};

}  // namespace kelvora
