#include "platform/qt/settingsTurn.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <thread>

namespace kelvora {

SettingsTurn::SettingsTurn(const std::string& folder)
    : folder_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  if (folder_ < 0) return;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
  while (::flock(folder_, LOCK_EX | LOCK_NB) != 0 && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

SettingsTurn::~SettingsTurn() {
  if (folder_ >= 0) ::close(folder_);
}

}  // namespace kelvora
