#include <windows.h>

#include <system_error>

#include "server/system/files.h"
#include "server/system/process.h"

namespace kelvora::server {

namespace {

std::string lastError() { return std::system_category().message(static_cast<int>(GetLastError())); }

}  // namespace

std::string replaceFile(const std::string& path, const std::string& contents) {
  const std::filesystem::path target = pathFromUtf8(path);
  const std::filesystem::path fresh = pathFromUtf8(path + ".new");
  HANDLE file = CreateFileW(fresh.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return lastError();
  DWORD count = 0;
  const bool isWritten = WriteFile(file, contents.data(), static_cast<DWORD>(contents.size()), &count, nullptr) != 0 &&
                         count == contents.size() && FlushFileBuffers(file) != 0;
  std::string error = isWritten ? "" : lastError();
  CloseHandle(file);
  if (!isWritten) return error;
  return MoveFileExW(fresh.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0
             ? ""
             : lastError();
}

}  // namespace kelvora::server
