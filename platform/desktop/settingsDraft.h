#pragma once

#include <filesystem>
#include <string>

#include "platform/desktop/settingsTurn.h"

namespace kelvora {

/// A copy of the settings file that is changed and then replaces the file atomically. It is in its own folder next to
/// the file, which is removed with it. Drafts left by killed instances are removed with the next one.
class SettingsDraft {
 public:
  /// Waits for its turn. The file's folder must exist. If the file doesn't, the draft is empty.
  explicit SettingsDraft(const std::string& path);
  ~SettingsDraft();
  SettingsDraft(const SettingsDraft&) = delete;
  SettingsDraft& operator=(const SettingsDraft&) = delete;

  /// The draft's path; empty if the file's path is taken by something else or nothing can be written.
  const std::filesystem::path& path() const { return draft_; }
  /// Renames the draft to a path from which no file has been read before.
  void rename();
  /// Replaces the file by the draft, with a later time than any file that was there.
  void publish();

 private:
  bool copyFile() const;

  std::filesystem::path file_;
  SettingsTurn turn_;
  std::filesystem::path folder_;
  std::filesystem::path draft_;
};

}  // namespace kelvora
