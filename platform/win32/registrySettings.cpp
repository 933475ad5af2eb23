#include "platform/win32/registrySettings.h"

#include <vector>

#include "platform/win32/wideText.h"
#include "platform/win32/win32.h"

namespace kelvora {

namespace {

std::wstring folderOf(const std::string& section) { return L"Software\\kelvora\\" + toWide(section); }

}  // namespace

std::string RegistrySettings::read(const std::string& section, const std::string& key,
                                   const std::string& fallback) const {
  const std::wstring folder = folderOf(section);
  const std::wstring name = toWide(key);
  std::vector<wchar_t> room(1024);
  for (;;) {
    auto size = static_cast<DWORD>(room.size() * sizeof(wchar_t));
    const LSTATUS status =
        RegGetValueW(HKEY_CURRENT_USER, folder.c_str(), name.c_str(), RRF_RT_REG_SZ, nullptr, room.data(), &size);
    // Another program may lengthen the value between two attempts.
    if (status == ERROR_MORE_DATA && room.size() < 1024 * 1024) {
      room.resize(room.size() * 2);
      continue;
    }
    if (status != ERROR_SUCCESS) return fallback;
    return fromWide(std::wstring(room.data(), size / sizeof(wchar_t) - 1));
  }
}

void RegistrySettings::write(const std::string& section, const std::string& key, const std::string& value) const {
  const std::wstring text = toWide(value);
  const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
  RegSetKeyValueW(HKEY_CURRENT_USER, folderOf(section).c_str(), toWide(key).c_str(), REG_SZ, text.c_str(), size);
}

}  // namespace kelvora
