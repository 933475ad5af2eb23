#include "platform/win32/wideText.h"

#include "base/codePage.h"

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

}  // namespace kelvora
