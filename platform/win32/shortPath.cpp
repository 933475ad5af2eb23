#include "platform/win32/shortPath.h"

#include "platform/win32/win32.h"

namespace kelvora {

std::wstring shortPath(const std::wstring& path) {
  constexpr std::size_t maxLength = 127;
  if (path.size() <= maxLength) return path;
  std::wstring found(path.size() + 1, L'\0');
  const DWORD length = GetShortPathNameW(path.c_str(), found.data(), static_cast<DWORD>(found.size()));
  if (length == 0 || length > path.size()) return path;
  found.resize(length);
  return found;
}

}  // namespace kelvora
