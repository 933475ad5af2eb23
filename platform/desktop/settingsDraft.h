#pragma once

#include <filesystem>
#include <string>

#include "platform/desktop/settingsTurn.h"

namespace kelvora {

/// A copy of the settings file that is changed and then replaces the file atomically. It has its own folder next to the
/// file, and the destructor removes that folder. The next draft removes whatever a killed instance has left behind.
class SettingsDraft {
 public:
  /// Waits for its turn, at most two seconds. The file's folder must exist. If the file doesn't, the draft is empty.
  explicit SettingsDraft(const std::string& path);
  ~SettingsDraft();
  SettingsDraft(const SettingsDraft&) = delete;
  SettingsDraft& operator=(const SettingsDraft&) = delete;

  /// The draft's path; empty if the file's path is taken by something else or nothing can be written.
  const std::filesystem::path& path() const { return draft_; }
  /// Renames the draft to a new path, so that the toolkit reads the file again instead of using its cache.
  void rename();
  /// Replaces the file with the draft, whose modification time becomes later than the old file's.
  void publish();

 private:
  bool copyFile() const;

  std::filesystem::path file_;
  SettingsTurn turn_;
  std::filesystem::path folder_;
  std::filesystem::path draft_;
};

}  // namespace kelvora
