#include "platform/win32/wideText.h"

#include "base/codePage.h"
#include "platform/win32/win32.h"

namespace kelvora {

std::wstring toWide(std::string_view bytes) {
  std::wstring text;
  text.reserve(bytes.size());
  for (const char byte : bytes) text += static_cast<wchar_t>(toUnicode(static_cast<unsigned char>(byte)));
  return text;
}

std::string fromWide(std::wstring_view text) {
  std::string bytes;
  for (const wchar_t letter : text) {
    if (const auto byte = toCodePage(static_cast<char32_t>(letter))) bytes += *byte;
  }
  return bytes;
}

std::wstring withJoinedAccents(std::wstring_view text) {
  if (text.empty()) return {};
  std::wstring joined(text.size(), L'\0');
  const int size = static_cast<int>(text.size());
  const int length = FoldStringW(MAP_PRECOMPOSED, text.data(), size, joined.data(), size);
  if (length == 0) return std::wstring(text);
  joined.resize(static_cast<std::size_t>(length));
  return joined;
}

std::wstring wideFromUtf8(std::string_view bytes) {
  std::wstring text(bytes.size(), L'\0');
  const int size = static_cast<int>(bytes.size());
  const int length = MultiByteToWideChar(CP_UTF8, 0, bytes.data(), size, text.data(), size);
  text.resize(static_cast<std::size_t>(length));
  return text;
}

}  // namespace kelvora
