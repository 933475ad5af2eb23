#include "platform/desktop/settingsTurn.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>

namespace kelvora {

SettingsTurn::SettingsTurn(const std::string& folder, std::chrono::milliseconds patience)
    : folder_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  if (folder_ < 0) return;
  using std::chrono::milliseconds;
  static bool isSomebodyHanging = false;  // and has been waited for
  const auto deadline =
      std::chrono::steady_clock::now() + (isSomebodyHanging ? std::min(patience, milliseconds(20)) : patience);
  // Some network drives can't lock folders, so waiting for them is pointless.
  const auto take = [this] { return ::flock(folder_, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK; };
  bool isTaken = take();
  while (!isTaken && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(milliseconds(1));
    isTaken = take();
  }
  isSomebodyHanging = !isTaken;
}

SettingsTurn::~SettingsTurn() {
  if (folder_ >= 0) ::close(folder_);
}

}  // namespace kelvora
