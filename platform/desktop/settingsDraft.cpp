#include "platform/desktop/settingsDraft.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <system_error>

namespace kelvora {

namespace fs = std::filesystem;

namespace {

constexpr const char* draftSuffix = ".saving";

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

SettingsDraft::SettingsDraft(const std::string& path, std::chrono::milliseconds patience)
    : file_(resolved(path)), turn_(file_.parent_path(), patience) {
  std::string folder = file_.string() + draftSuffix + "-XXXXXX";
  if (::mkdtemp(folder.data()) == nullptr) return;
  folder_ = folder;
  openFolder_ = ::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  removeOthers();
  draft_ = folder_ / freshName();
  if (!copyFile()) draft_.clear();
}

SettingsDraft::~SettingsDraft() {
  if (openFolder_ >= 0) ::close(openFolder_);
  std::error_code ignored;
  if (!folder_.empty()) fs::remove_all(folder_, ignored);
}

/// Moves the other folders into this one before it removes them: nothing can be added to a folder that has lost its
/// path.
void SettingsDraft::removeOthers() const {
  const std::string prefix = file_.filename().string() + draftSuffix;
  std::error_code error;
  for (fs::directory_iterator entry(file_.parent_path(), error), end; !error && entry != end; entry.increment(error)) {
    if (!entry->path().filename().string().starts_with(prefix) || entry->path() == folder_) continue;
    const fs::path moved = folder_ / freshName();
    std::error_code ignored;
    fs::rename(entry->path(), moved, ignored);
    fs::remove_all(moved, ignored);
  }
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

bool SettingsDraft::publish() {
  // The toolkit detects a changed file by its size and its time in milliseconds, which can both be equal for files
  // written in quick succession. So each file gets a later time than the last, whatever the clock says.
  std::error_code error;
  const fs::file_time_type now = fs::file_time_type::clock::now();
  const fs::file_time_type before = fs::last_write_time(file_, error);
  fs::last_write_time(draft_, error ? now : std::max(now, before + std::chrono::milliseconds(1)), error);
  // From the open folder: the toolkit creates a removed one again, with nothing but the value to be saved.
  return ::renameat(openFolder_, draft_.filename().c_str(), AT_FDCWD, file_.c_str()) == 0;
}

bool SettingsDraft::isRemoved() const {
  struct stat made = {};
  struct stat found = {};
  if (folder_.empty()) return false;
  return ::fstat(openFolder_, &made) != 0 || ::stat(folder_.c_str(), &found) != 0 || made.st_ino != found.st_ino;
}

}  // namespace kelvora
