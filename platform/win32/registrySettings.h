#pragma once

#include <string>

namespace kelvora {

/// The settings in the user's part of the registry, under Software\kelvora: a key for each section.
class RegistrySettings {
 public:
  /// A setting, or the fallback if it is missing or not a text.
  std::string read(const std::string& section, const std::string& key, const std::string& fallback) const;
  /// Saves a setting at once. Failures are silent.
  void write(const std::string& section, const std::string& key, const std::string& value) const;
};

}  // namespace kelvora
