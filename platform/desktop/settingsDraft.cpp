#include "platform/desktop/settingsDraft.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <system_error>

namespace kelvora {

namespace fs = std::filesystem;

namespace {

/// The target of a link, if it exists.
fs::path resolved(const fs::path& path) {
  std::error_code error;
  const fs::path target = fs::canonical(path, error);
  return error ? path : target;
}

std::string freshName() {
  static int count = 0;
  return std::to_string(++count);
}

bool writeAll(int file, const char* bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t written = ::write(file, bytes, size);
    if (written <= 0) return false;
    bytes += written;
    size -= static_cast<std::size_t>(written);
  }
  return true;
}

bool copyBytes(int from, int to) {
  std::array<char, 65536> bytes;
  for (;;) {
    const ssize_t size = ::read(from, bytes.data(), bytes.size());
    if (size <= 0) return size == 0;
    if (!writeAll(to, bytes.data(), static_cast<std::size_t>(size))) return false;
  }
}

}  // namespace

SettingsDraft::SettingsDraft(const std::string& path)
    : file_(resolved(path)), turn_(file_.parent_path()), folder_(file_.string() + ".saving") {
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
  if (::mkdir(folder_.c_str(), S_IRWXU) != 0) return;
  draft_ = folder_ / freshName();
  if (!copyFile()) draft_.clear();
}

SettingsDraft::~SettingsDraft() {
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

bool SettingsDraft::copyFile() const {
  std::error_code error;
  const fs::file_type type = fs::status(file_, error).type();
  if (type != fs::file_type::regular && type != fs::file_type::not_found) return false;
  const int to = ::open(draft_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (to < 0) return false;
  bool isWhole = true;
  if (type == fs::file_type::regular) {
    const int from = ::open(file_.c_str(), O_RDONLY | O_CLOEXEC);
    isWhole = from >= 0 && copyBytes(from, to);
    ::close(from);
  }
  return ::close(to) == 0 && isWhole;
}

void SettingsDraft::rename() {
  const fs::path fresh = folder_ / freshName();
  std::error_code error;
  fs::rename(draft_, fresh, error);
  if (!error) draft_ = fresh;
}

void SettingsDraft::publish() {
  // The toolkit detects a changed file by its size and its time in milliseconds, which can both be equal for files
  // written in quick succession. So each file gets a later time than the last, whatever the clock says.
  std::error_code error;
  const fs::file_time_type now = fs::file_time_type::clock::now();
  const fs::file_time_type before = fs::last_write_time(file_, error);
  fs::last_write_time(draft_, error ? now : std::max(now, before + std::chrono::milliseconds(1)), error);
  fs::rename(draft_, file_, error);
}

}  // namespace kelvora
