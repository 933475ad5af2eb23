#pragma once

#include <chrono>
#include <string>

namespace kelvora {

/// The settings: one text file in a folder, both private to the user. Values are strings of any bytes. Missing, damaged
/// or inaccessible settings read as the fallback, and values that can't be written are dropped. Neither is a fault.
class QtSettings {
 public:
  /// The file's path, in the file system's encoding. `patience` is how long a write waits for another instance that
  /// hangs while it saves.
  explicit QtSettings(std::string path, std::chrono::milliseconds patience = std::chrono::seconds(2));

  std::string read(const std::string& section, const std::string& key, const std::string& fallback) const;
  /// Saved at once.
  void write(const std::string& section, const std::string& key, const std::string& value);

  /// kelvora/kelvora.ini in XDG_CONFIG_HOME, or in ~/.config.
  static std::string defaultPath();

 private:
  void makeFolder() const;
  bool writeDraft(const std::string& section, const std::string& key, const std::string& value) const;

  std::string path_;
  std::chrono::milliseconds patience_;
};

}  // namespace kelvora
