#include <windows.h>

#include <system_error>

#include "server/system/files.h"
#include "server/system/process.h"

namespace kelvora::server {

namespace {

std::string text(DWORD error) { return std::system_category().message(static_cast<int>(error)); }

std::string lastError() { return text(GetLastError()); }

std::string write(HANDLE file, const std::string& contents) {
  DWORD count = 0;
  if (WriteFile(file, contents.data(), static_cast<DWORD>(contents.size()), &count, nullptr) == 0) return lastError();
  if (count != contents.size()) return text(ERROR_DISK_FULL);
  return FlushFileBuffers(file) != 0 ? "" : lastError();
}

}  // namespace

std::string replaceFile(const std::string& path, const std::string& contents) {
  const std::filesystem::path target = pathFromUtf8(path);
  const std::filesystem::path fresh = pathFromUtf8(path + ".new");
  HANDLE file = CreateFileW(fresh.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return lastError();
  std::string error = write(file, contents);
  CloseHandle(file);
  constexpr DWORD how = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  if (error.empty() && MoveFileExW(fresh.c_str(), target.c_str(), how) == 0) error = lastError();
  if (!error.empty()) DeleteFileW(fresh.c_str());
  return error;
}

}  // namespace kelvora::server
