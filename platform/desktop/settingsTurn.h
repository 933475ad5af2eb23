#pragma once

#include <string>

namespace kelvora {

/// The right to write the settings, which one instance of the game has at a time. The system takes it back from an
/// instance that ends in whatever way. One that keeps it for more than two seconds hangs, and is passed over, from then
/// on at once; so is a folder that cannot be opened or locked.
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
