#include <vector>

#include "platform/desktop/dataFolder.h"
#include "platform/win32/win32.h"

namespace kelvora {

std::filesystem::path programFolder() {
  std::vector<wchar_t> path(32768);
  const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  return std::filesystem::path(path.data(), path.data() + length).parent_path();
}

}  // namespace kelvora
