#pragma once

#include <chrono>
#include <filesystem>
#include <string>

#include "platform/desktop/settingsTurn.h"

namespace kelvora {

/// A copy of the settings file that is changed and then replaces the file atomically. It has its own folder next to the
/// file, and the destructor removes that folder.
///
/// Each draft first removes all others: those of killed instances, and those of instances that hang or are starved of
/// processor time. An instance whose draft was removed can't publish it. So the file can't change between the making of
/// a draft and its publication, even where locks don't work.
class SettingsDraft {
 public:
  /// Waits for its turn for this long at most. The file's folder must exist. If the file doesn't, the draft is empty.
  SettingsDraft(const std::string& path, std::chrono::milliseconds patience);
  ~SettingsDraft();
  SettingsDraft(const SettingsDraft&) = delete;
  SettingsDraft& operator=(const SettingsDraft&) = delete;

  /// The draft's path; empty if the file's path is taken by something else or nothing can be written.
  const std::filesystem::path& path() const { return draft_; }
  /// Renames the draft to a new path, so that the toolkit reads the file again instead of using its cache.
  void rename();
  /// Replaces the file with the draft, whose modification time becomes later than the old file's. Returns false if that
  /// is impossible.
  bool publish();
  /// True if another instance has removed this draft, so that a new one is needed.
  bool isRemoved() const;

 private:
  void removeOthers() const;
  bool copyFile() const;

  std::filesystem::path file_;
  SettingsTurn turn_;
  std::filesystem::path folder_;
  int openFolder_ = -1;
  std::filesystem::path draft_;
};

}  // namespace kelvora
