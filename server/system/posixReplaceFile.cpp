#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string_view>

#include "server/system/files.h"

namespace kelvora::server {

namespace {

std::string lastError() { return std::strerror(errno); }

bool writeAll(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(file, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace

std::string replaceFile(const std::string& path, const std::string& contents) {
  const std::string fresh = path + ".new";
  const int file = ::open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (file < 0) return lastError();
  std::string error = writeAll(file, contents) && ::fsync(file) == 0 ? "" : lastError();
  ::close(file);
  if (error.empty() && std::rename(fresh.c_str(), path.c_str()) != 0) error = lastError();
  if (!error.empty()) {
    ::unlink(fresh.c_str());
    return error;
  }
  // The new name is in the folder, which the disk has to hold as well.
  const std::string folder = std::filesystem::path(path).parent_path().native();
  const int opened = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (opened < 0) return lastError();
  if (::fsync(opened) != 0) error = lastError();
  ::close(opened);
  return error;
}

}  // namespace kelvora::server
