#pragma once

#include <filesystem>
#include <string>

#include "platform/desktop/settingsTurn.h"

namespace kelvora {

/// A copy of the settings file to be changed and put in the file's place, all of it or nothing. It lies in a folder of
/// its own beside the file, which goes with it; what killed instances left there goes with the next draft.
class SettingsDraft {
 public:
  /// The folder of the file has to be there; without the file the draft is empty. Waits for its turn.
  explicit SettingsDraft(const std::string& path);
  ~SettingsDraft();
  SettingsDraft(const SettingsDraft&) = delete;
  SettingsDraft& operator=(const SettingsDraft&) = delete;

  /// Where the draft is; empty if there is none, because something else has the file's place or nothing can be written.
  const std::filesystem::path& path() const { return draft_; }
  /// Gives it a name under which no file has been read before.
  void rename();
  /// Puts it in the file's place, later by its time than any file that was there.
  void publish();

 private:
  bool copyFile() const;

  std::filesystem::path file_;
  SettingsTurn turn_;
  std::filesystem::path folder_;
  std::filesystem::path draft_;
};

}  // namespace kelvora
