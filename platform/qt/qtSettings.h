#pragma once

#include <string>

namespace kelvora {

/// The settings store: one text file for this user alone, in a folder for this user alone. Values are strings of any
/// bytes. A store that is missing, damaged or out of reach reads as empty, and a value that cannot be written is
/// dropped; neither is ever a fault.
class QtSettings {
 public:
  /// The file's path as the file system spells it.
  explicit QtSettings(std::string path);

  std::string read(const std::string& section, const std::string& key, const std::string& fallback) const;
  /// Stored at once.
  void write(const std::string& section, const std::string& key, const std::string& value);

  /// kelvora/kelvora.ini in XDG_CONFIG_HOME, or in ~/.config.
  static std::string defaultPath();

 private:
  void makeFolder() const;

  std::string path_;
};

}  // namespace kelvora
