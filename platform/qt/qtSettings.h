#pragma once

#include <string>

namespace kelvora {

/// The settings: one text file in a folder, both private to the user. Values are strings of any bytes. Missing, damaged
/// or inaccessible settings read as the fallback, and values that can't be written are dropped. Neither is a fault.
class QtSettings {
 public:
  /// The file's path, in the file system's encoding.
  explicit QtSettings(std::string path);

  std::string read(const std::string& section, const std::string& key, const std::string& fallback) const;
  /// Saved at once.
  void write(const std::string& section, const std::string& key, const std::string& value);

  /// kelvora/kelvora.ini in XDG_CONFIG_HOME, or in ~/.config.
  static std::string defaultPath();

 private:
  void makeFolder() const;

  std::string path_;
};

}  // namespace kelvora
